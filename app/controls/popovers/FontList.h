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

// The rows of the font chooser: the current font if it is not installed, the system font, and the
// families. While a family is unfolded, its faces follow it.
class FontList : public QAbstractListModel {
    Q_OBJECT
public:
    FontList(const QString& current, QObject* parent = nullptr);

    // Shows the rows whose names contain every word of `filter`. A face that matches is shown below
    // its family.
    void setFilter(const QString& filter);
    void setUnfolded(const QString& family, bool unfolded);
    bool isUnfolded(const QString& family) const { return m_unfolded.contains(family); }
    bool hasFaces(const QString& family) { return m_catalog.faces(family).size() > 1; }
    const FontRow& rowAt(int index) const { return m_rows[index]; }
    // The stored name of the face that is drawn for the current font.
    const QString& current() const { return m_drawn; }
    bool isMarked(const FontRow& row) const;    // marked as the current font
    int indexOf(const QString& storedName) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;

private:
    void build();

    FontCatalog m_catalog;
    QString m_current;    // the stored name of the current font
    QString m_drawn;      // the stored name of the face that is drawn for m_current
    QString m_filter;
    QSet<QString> m_unfolded;
    QList<FontRow> m_rows;
};
