#pragma once
#include <QWidget>

#include <optional>

// The cost of an action and the balance that pays it, in credits.
struct Cost {
    std::optional<qint64> credits = {};    // empty while the cost is being calculated
    qint64 balance = 0;
    qint64 most = 0;    // the highest cost that must fit in the chip
    bool isShort() const { return credits && *credits > balance; }
    bool operator==(const Cost&) const = default;
};

// Shows the cost of a button's action. The chip keeps its width when the cost changes, so that
// nothing around it moves.
class CostChip : public QWidget {
    Q_OBJECT
public:
    // `digits`: how many digits the chip has space for. A cost with more digits widens the chip for
    // good.
    explicit CostChip(int digits, QWidget* parent = nullptr);
    void setCost(const Cost& cost);
    const Cost& cost() const { return m_cost; }
    QString spoken() const;    // such as "cuesta 50 créditos"
    // Paints the chip in white, for a place on a primary button.
    void setOnAccent();
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor ink() const;
    int shownDigits() const;

    int m_digits;
    bool m_isOnAccent = false;
    Cost m_cost;
};
