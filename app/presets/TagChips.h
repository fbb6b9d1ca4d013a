#pragma once
#include "app/controls/fields/Choices.h"

#include <QStringList>
#include <QWidget>

// Which designs a gallery shows; empty members let all pass.
struct GalleryFilter {
    QString search = {};
    QString tag = {};
    bool favourites = false;

    bool isEmpty() const { return search.isEmpty() && tag.isEmpty() && !favourites; }
    bool operator==(const GalleryFilter&) const = default;
};

// Chips of which one is chosen: all designs, the favourites, or those with a tag. At most two rows;
// the other tags are in the menu of the last chip. A single Tab stop; the arrow keys choose.
class TagChips : public QWidget, public Choices {
    Q_OBJECT
public:
    explicit TagChips(QWidget* parent = nullptr);
    // A chosen tag that is not among them stays chosen.
    void setTags(const QStringList& tags);
    // Chooses the favourites or the tag of the filter, or else all; emits nothing.
    void setFilter(const GalleryFilter& filter);

    QAccessible::Role choiceRole() const override { return QAccessible::RadioButton; }
    int choiceCount() const override { return int(m_chips.size()); }
    int current() const override;
    QRect choiceRect(int index) const override { return m_chips[index].rect; }
    QString choiceName(int index) const override;
    void choose(int index) override;

Q_SIGNALS:
    void chosen(const QString& tag, bool favourites);    // by the user

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;

private:
    struct Chip {
        enum class Kind { all, favourites, tag, more };
        Kind kind = Kind::all;
        QString tag = {};
        QRect rect = {};
    };
    QString labelOf(const Chip& chip) const;
    int widthOf(const Chip& chip) const;
    void place();
    int chipAt(QPoint position) const;
    bool isShown(const QString& tag) const;
    void choose(const QString& tag, bool favourites);
    void showRest();

    QStringList m_tags;
    QString m_tag;    // the chosen one; empty if none is
    bool m_favourites = false;
    QList<Chip> m_chips;
    QStringList m_rest;    // tags without a chip
    int m_hovered = -1;
};
