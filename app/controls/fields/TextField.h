#pragma once
#include <QLineEdit>
#include <QWidget>

// A one-line edit below a label that stays visible.
class TextField : public QWidget {
    Q_OBJECT
public:
    TextField(const QString& label, const QString& placeholder, QWidget* parent = nullptr);
    // Emits nothing. A text that is set again leaves alone what is being typed.
    void setText(const QString& text);
    QString text() const { return m_edit->text(); }
    QLineEdit* edit() const { return m_edit; }
    void finish();    // ends the edit under way
    QSize sizeHint() const override { return {320, 44}; }

Q_SIGNALS:
    void edited(const QString& text);    // the edit has ended with another text

protected:
    bool eventFilter(QObject* object, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    QString m_label;
    QString m_shown;    // the text last set or emitted
    QLineEdit* m_edit;
};
