#pragma once
#include "app/controls/Button.h"

enum class NameForm { whole, first, none };

// The button in the top bar with the user's name and balance.
class UserAccountButton final : public Control {
    Q_OBJECT
public:
    explicit UserAccountButton(QWidget* parent = nullptr);
    void setAccount(const QString& name, qint64 balance);
    void setNameForm(NameForm form);
    QSize sizeHint() const override;

Q_SIGNALS:
    void widthChanged();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString shownName() const;
    double textRoom() const;

    QString m_name;
    qint64 m_balance = 0;
    NameForm m_form = NameForm::whole;
};
