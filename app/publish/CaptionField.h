#pragma once
#include "app/publish/PublishShown.h"

#include <QWidget>

class Caption;
class IconButton;
class MenuButton;
class Paragraph;
class SlotEditor;

// The caption of a post: an editor below a heading with a counter, and where the text came from.
class CaptionField : public QWidget {
    Q_OBJECT
public:
    explicit CaptionField(QWidget* parent = nullptr);
    void setShown(const CaptionShown& shown);    // emits nothing
    void setLocked(bool locked);                 // while it is being sent
    SlotEditor* editor() const { return m_editor; }
    QList<QWidget*> focusOrder() const;

Q_SIGNALS:
    void edited(const QString& caption);
    void captionOfWanted(QUuid item);
    void choicesWanted(QList<CaptionChoice>* choices);    // to be filled
    void leaveRequested();                                // Esc was pressed

private:
    void tellLength();
    void fillMenu(class QMenu* menu);
    void take(QUuid image);
    void copy();

    CaptionShown m_shown;
    bool m_isLocked = false;
    bool m_isTaking = false;    // the caption of an image, which can be undone
    class CaptionCounter* m_counter;
    MenuButton* m_images;
    IconButton* m_copy;
    class CaptionBox* m_box;
    SlotEditor* m_editor;
    class OriginLine* m_origin;
    Paragraph* m_note;
};
