#pragma once
#include <QPointer>
#include <QWidget>

class CopyButton;
class Paragraph;
class QBoxLayout;

enum class NoticeKind { info, problem };

// A message about the last action, with an icon. Keeps its room while it is empty, so that nothing
// shifts. If the message holds an address, its last row is a button to copy the address.
class Notice : public QWidget {
    Q_OBJECT
public:
    // `place`: where a message of fewer than `rows` rows stands, at the top or in the middle.
    explicit Notice(int rows, Qt::Alignment place = Qt::AlignTop, QWidget* parent = nullptr);
    void tell(NoticeKind kind, const QString& text);
    QString text() const;
    CopyButton* copyButton() const { return m_copy; }
    // Moves the notice below `control`, into the innermost vertical layout around it. Its button
    // follows `control` in the order of Tab.
    void standBelow(QWidget* control);
    void standIn(QBoxLayout* place);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const int m_rows;
    NoticeKind m_kind = NoticeKind::info;
    Paragraph* m_text;
    CopyButton* m_copy;
    QPointer<QBoxLayout> m_place;
};
