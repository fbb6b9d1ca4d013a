#include "app/controls/popovers/FontList.h"

#include "canvas/TextFitting.h"

using namespace Qt::StringLiterals;

namespace {

bool matches(const QString& name, const QStringList& words)
{
    return std::ranges::all_of(
        words, [&](const QString& word) { return name.contains(word, Qt::CaseInsensitive); });
}

}    // namespace

FontList::FontList(const QString& current, QObject* parent)
    : QAbstractListModel(parent), m_current(current),
      m_drawn(current == "System"_L1 || !ExportCanvasRenderer::isInstalled(current)
                  ? current
                  : drawnFace(current))
{
    // Unfolds the family of the current face, unless the row of the family itself stands for that
    // face.
    for (const QString& family : m_catalog.families()) {
        if (m_drawn.startsWith(family + u' ') && m_catalog.usualFace(family) != m_drawn &&
            std::ranges::any_of(m_catalog.faces(family),
                                [&](const FontFace& face) { return face.storedName == m_drawn; }))
            m_unfolded.insert(family);
    }
    build();
}

void FontList::setFilter(const QString& filter)
{
    if (filter == m_filter)
        return;
    m_filter = filter;
    build();
}

void FontList::setUnfolded(const QString& family, bool unfolded)
{
    if (unfolded == isUnfolded(family))
        return;
    if (unfolded)
        m_unfolded.insert(family);
    else
        m_unfolded.remove(family);
    build();
}

void FontList::build()
{
    beginResetModel();
    m_rows.clear();
    const QStringList words = m_filter.simplified().split(u' ', Qt::SkipEmptyParts);
    const auto add = [&](const FontRow& row) {
        if (matches(row.name, words))
            m_rows.append(row);
    };
    if (!ExportCanvasRenderer::isInstalled(m_current))
        add({FontRowKind::missing, m_current, m_current});
    add({FontRowKind::system, u"Sistema"_s, u"System"_s});
    for (const QString& family : m_catalog.families()) {
        const bool whole = matches(family, words);
        QList<FontRow> faces;
        if (!whole || m_unfolded.contains(family)) {
            for (const FontFace& face : m_catalog.faces(family)) {
                if (whole || matches(face.storedName, words))
                    faces.append({FontRowKind::face, face.name, face.storedName});
            }
        }
        if (whole || !faces.isEmpty())
            m_rows.append({FontRowKind::family, family, m_catalog.usualFace(family)});
        m_rows.append(faces);
    }
    endResetModel();
}

bool FontList::isMarked(const FontRow& row) const
{
    // While a family is unfolded, the row of its face is marked instead.
    return row.storedName == m_drawn && !(row.kind == FontRowKind::family && isUnfolded(row.name));
}

int FontList::indexOf(const QString& storedName) const
{
    const auto found = std::ranges::find(m_rows, storedName, &FontRow::storedName);
    return found == m_rows.cend() ? -1 : int(found - m_rows.cbegin());
}

int FontList::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant FontList::data(const QModelIndex& index, int role) const
{
    if (index.row() < 0 || index.row() >= m_rows.size())
        return {};
    const FontRow& row = m_rows[index.row()];
    if (role == Qt::DisplayRole)
        return row.kind == FontRowKind::face ? row.storedName : row.name;
    if (role == Qt::ToolTipRole && row.kind == FontRowKind::missing)
        return u"No está instalada; se dibuja con otra."_s;
    return {};
}
