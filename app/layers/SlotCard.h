#pragma once
#include "app/theme/Icons.h"
#include "model/CopySlot.h"
#include "model/Pace.h"

#include <QTimer>
#include <QWidget>

class IconButton;
class SlotEditor;
struct TextLayer;

enum class CardMark { none, selected };

// One text of the image, edited in place. The card of a hidden text is folded to its header, except
// while the text is edited.
class SlotCard : public QWidget {
    Q_OBJECT
public:
    explicit SlotCard(CopySlot slot, QWidget* parent = nullptr);
    void setLayer(const TextLayer& layer, CardMark mark);
    // Sets sentences about the text. If there are any, an icon appears beside the name of the slot;
    // while the text is edited, the card also shows the first sentence.
    void setWarnings(const QStringList& warnings);
    QStringList warnings() const { return m_warnings; }
    void edit();    // gives the editor the focus and selects all its text
    // Why no other text can be proposed, the tooltip of the disabled button; empty: one can.
    void setProposalRefused(const QString& reason);
    SlotEditor* editor() const { return m_editor; }
    IconButton* proposal() const { return m_proposal; }
    IconButton* eye() const { return m_eye; }

Q_SIGNALS:
    void edited(const QString& text, Pace pace);
    void visibilityToggled();
    void proposalRequested();
    void focused();
    void grown();
    void leaveRequested();

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    void open();
    void place();
    void updateWarningLine();

    CopySlot m_slot;
    Icon m_icon;
    QString m_name;
    bool m_hasLayer = false;    // setLayer() was called at least once
    bool m_visible = true;
    bool m_editing = false;
    CardMark m_mark = CardMark::none;
    QStringList m_warnings;
    bool m_tellsWarning = false;
    QTimer m_tellLater;
    IconButton* m_proposal;
    IconButton* m_eye;
    SlotEditor* m_editor;
};
