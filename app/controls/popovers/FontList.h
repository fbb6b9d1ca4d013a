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

// The fonts to choose from: the system's first, families with their faces folded under them, and on
// top the current one when it is not installed.
class FontList : public QAbstractListModel {
    Q_OBJECT
public:
    FontList(const QString& current, QObject* parent = nullptr);

    // Every word must occur; faces that match are shown with their family.
    void setFilter(const QString& filter);
    void setUnfolded(const QString& family, bool unfolded);
    bool isUnfolded(const QString& family) const { return m_unfolded.contains(family); }
    bool hasFaces(const QString& family) { return m_catalog.faces(family).size() > 1; }
    const FontRow& rowAt(int index) const { return m_rows[index]; }
    // The stored name of the face that is drawn now.
    const QString& current() const { return m_drawn; }
    bool isMarked(const FontRow& row) const;    // as the current one
    int indexOf(const QString& storedName) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    void build();

    FontCatalog m_catalog;
    QString m_current;    // as it is stored
    QString m_drawn;      // the face that stands for it
    QString m_filter;
    QSet<QString> m_unfolded;
    QList<FontRow> m_rows;
};
