#pragma once
#include "app/controls/popovers/Popover.h"

class FontList;
class LineField;
class QListView;

// A search field above the list of fonts, whose names are drawn in their own fonts. While the
// search field has the focus, up and down move in the list, right and left unfold and fold a
// family, and Enter chooses.
class FontPopover : public Popover {
    Q_OBJECT
public:
    FontPopover(QWidget* owner, const QString& current);
    void open();

Q_SIGNALS:
    void chosen(const QString& storedName);

protected:
    bool eventFilter(QObject* object, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void moveCurrent(int rows);
    void choose(int index);
    bool setUnfolded(int index, bool unfolded);    // returns whether anything changed
    bool pressKey(int key);

    FontList* m_fonts;
    LineField* m_search;
    QListView* m_view;
    double m_pressX = 0;
};
