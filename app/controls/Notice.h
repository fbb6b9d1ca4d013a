#pragma once
#include <QPointer>
#include <QWidget>

class CopyButton;
class Paragraph;
class QBoxLayout;

enum class NoticeKind { info, problem };

// A message about the last action, with an icon. While it is empty it keeps its height, so that
// nothing around it moves. If the message contains a web address, its last row is a button that
// copies the address.
class Notice : public QWidget {
    Q_OBJECT
public:
    // `place`: Qt::AlignTop or Qt::AlignVCenter, for a message of fewer than `rows` rows.
    explicit Notice(int rows, Qt::Alignment place = Qt::AlignTop, QWidget* parent = nullptr);
    void tell(NoticeKind kind, const QString& text);
    QString text() const;
    CopyButton* copyButton() const { return m_copy; }
    // Moves the notice below `control`, into the innermost vertical layout around `control`. Tab
    // then goes from `control` to the copy button.
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
