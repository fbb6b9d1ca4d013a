#pragma once
#include "model/Pace.h"

#include <QWidget>

class IconView;
class Paragraph;
class SlotEditor;

// The caption that is posted with the image, edited in place. At rest it shows the first lines.
class CaptionCard : public QWidget {
    Q_OBJECT
public:
    explicit CaptionCard(QWidget* parent = nullptr);
    void setCaption(const QString& caption);
    void setNotes(const QString& notes);    // what the engine noted; tooltip of the info icon
    void setRestLines(int lines);           // how many are seen while it is not edited
    SlotEditor* editor() const { return m_editor; }

Q_SIGNALS:
    void edited(const QString& caption, Pace pace);
    void grown();
    void leaveRequested();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    void describe();
    void setEditing(bool isEditing);
    void fitEditor();
    void place();

    int m_restLines = 3;
    bool m_isEditing = false;
    QString m_caption, m_notes;
    qsizetype m_count = 0;    // of the caption's characters
    IconView* m_info;
    SlotEditor* m_editor;
    Paragraph* m_rest;    // over the editor while it is not edited; elides
};
