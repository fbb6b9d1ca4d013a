#pragma once
#include <QWidget>

#include <optional>

// What something costs, in credits, where there may be more than are left.
struct Cost {
    std::optional<qint64> credits = {};    // nothing while it is being found out
    qint64 balance = 0;
    qint64 most = 0;    // what it may cost at other times, which the coin leaves room for
    bool isShort() const { return credits && *credits > balance; }
    bool operator==(const Cost&) const = default;
};

// The cost of what a button does. Its width stays the same, so that nothing shifts.
class CostChip : public QWidget {
    Q_OBJECT
public:
    // Room for so many digits; a wider number makes it wider for good.
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
