#pragma once
#include "app/controls/popovers/FontCatalog.h"

#include <QAbstractListModel>
#include <QSet>

enum class FontRowKind { missing, system, family, face };
struct FontRow {
    FontRowKind kind;
    QString name;
    QString storedName;
    bool operator==(const FontRow&) const = default;
};

// The fonts to choose from: first the current one if it is not installed, then the system's, then
// the families with their faces folded under them.
class FontList : public QAbstractListModel {
    Q_OBJECT
public:
    FontList(const QString& current, QObject* parent = nullptr);

    // Every word of `filter` must occur; a face that matches is shown with its family.
    void setFilter(const QString& filter);
    void setUnfolded(const QString& family, bool unfolded);
    bool isUnfolded(const QString& family) const { return m_unfolded.contains(family); }
    bool hasFaces(const QString& family) { return m_catalog.faces(family).size() > 1; }
    const FontRow& rowAt(int index) const { return m_rows[index]; }
    // The stored name of the face that is drawn for the current font.
    const QString& current() const { return m_drawn; }
    bool isMarked(const FontRow& row) const;    // as the current font
    int indexOf(const QString& storedName) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    void build();

    FontCatalog m_catalog;
    QString m_current;    // the stored name of the current font
    QString m_drawn;      // the face that is drawn for it
    QString m_filter;
    QSet<QString> m_unfolded;
    QList<FontRow> m_rows;
};
