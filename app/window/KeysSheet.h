#pragma once
#include "app/controls/popovers/Sheet.h"
#include "app/window/KeyList.h"

class LineField;
class QScrollArea;

// "Atajos de teclado": all keys, with a search.
class KeysSheet : public Sheet {
    Q_OBJECT
public:
    KeysSheet(const QList<KeyGroup>& groups, QWidget* window);
    LineField* search() const { return m_search; }
    QList<KeyGroup> shown() const;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void showMatching();

    QList<KeyGroup> m_groups;
    LineField* m_search;
    QScrollArea* m_area;
};
