#pragma once
#include <QWidget>

#include <optional>

// The cost of something in credits, and the balance to pay it from.
struct Cost {
    std::optional<qint64> credits = {};    // nothing while it is being calculated
    qint64 balance = 0;
    qint64 most = 0;    // the highest cost to leave room for
    bool isShort() const { return credits && *credits > balance; }
    bool operator==(const Cost&) const = default;
};

// The cost of a button's action. Its width stays the same, so that nothing shifts.
class CostChip : public QWidget {
    Q_OBJECT
public:
    // Keeps room for so many digits; a longer cost makes the chip wider for good.
    explicit CostChip(int digits, QWidget* parent = nullptr);
    void setCost(const Cost& cost);
    const Cost& cost() const { return m_cost; }
    QString spoken() const;    // "cuesta 50 créditos"
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QColor ink() const;
    int shownDigits() const;

    int m_digits;
    Cost m_cost;
};
