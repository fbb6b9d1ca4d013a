#pragma once
#include <QWidget>

class Paragraph;

enum class NoticeKind { info, problem };

// What came of the last action, with its icon. Its room is kept when it is empty, so that nothing
// jumps when it comes.
class Notice : public QWidget {
    Q_OBJECT
public:
    explicit Notice(int rows, QWidget* parent = nullptr);
    void tell(NoticeKind kind, const QString& text);
    QString text() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    NoticeKind m_kind = NoticeKind::info;
    Paragraph* m_text;
};
