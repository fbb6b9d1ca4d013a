#include "app/presets/TemplateGalleryAccessible.h"

#include "app/controls/PartsAccessible.h"
#include "app/presets/TemplateGallery.h"

using namespace Qt::StringLiterals;

namespace {

class GalleryPartAccessible : public PartAccessible {
public:
    using PartAccessible::PartAccessible;

    bool isValid() const override { return m_widget && m_index < parts().size(); }
    QAccessible::Role role() const override
    {
        if (!isValid())
            return QAccessible::NoRole;
        switch (parts()[m_index].kind) {
        case GalleryPart::Kind::tile:
            return QAccessible::ListItem;
        case GalleryPart::Kind::note:
            return QAccessible::StaticText;
        case GalleryPart::Kind::sectionMenu:
            return QAccessible::ButtonMenu;
        case GalleryPart::Kind::heading:
        case GalleryPart::Kind::random:
        case GalleryPart::Kind::refresh:
            return QAccessible::PushButton;
        }
        Q_UNREACHABLE();
    }
    QString text(QAccessible::Text kind) const override
    {
        if (!isValid())
            return {};
        if (kind == QAccessible::Name)
            return gallery()->accessibleText(m_index);
        const bool isHeading = parts()[m_index].kind == GalleryPart::Kind::heading;
        return kind == QAccessible::Description && isHeading ? section().stateTip : QString();
    }
    QRect rect() const override
    {
        if (!isValid())
            return {};
        const QRect box = gallery()->partRect(m_index);
        return {gallery()->viewport()->mapToGlobal(box.topLeft()), box.size()};
    }
    QAccessible::State state() const override
    {
        QAccessible::State state;
        if (!isValid()) {
            state.invalid = true;
            return state;
        }
        state.offscreen = !gallery()->partRect(m_index).intersects(gallery()->viewport()->rect());
        state.invisible = !gallery()->isVisible();
        const GalleryPart& part = parts()[m_index];
        if (part.kind == GalleryPart::Kind::note)
            return state;
        state.focusable = true;
        state.focused = gallery()->hasFocus() && gallery()->marked() == m_index;
        if (part.kind == GalleryPart::Kind::heading) {
            state.expandable = true;
            state.expanded = !section().isFolded;
            state.collapsed = section().isFolded;
        } else if (const GalleryTile* tile = gallery()->tile(m_index)) {
            state.selectable = true;
            state.selected = gallery()->isApplied(tile->id);
        }
        return state;
    }

protected:
    void press() override { gallery()->activate(m_index); }

private:
    TemplateGallery* gallery() const { return static_cast<TemplateGallery*>(m_widget.data()); }
    const QList<GalleryPart>& parts() const { return gallery()->layoutOfParts().parts; }
    const GallerySection& section() const
    {
        return gallery()->sections()[parts()[m_index].section];
    }
};

class GalleryAccessible : public PartsAccessible {
public:
    explicit GalleryAccessible(TemplateGallery* gallery)
        : PartsAccessible(gallery, QAccessible::List)
    {
    }

    int childCount() const override { return int(gallery()->layoutOfParts().parts.size()); }
    QAccessibleInterface* childAt(int x, int y) const override
    {
        return child(gallery()->partAt(gallery()->viewport()->mapFromGlobal(QPoint(x, y))));
    }
    QAccessibleInterface* focusChild() const override
    {
        return gallery()->hasFocus() ? child(gallery()->marked()) : nullptr;
    }

protected:
    PartAccessible* newPart(int index) const override
    {
        return new GalleryPartAccessible(gallery(), index);
    }

private:
    TemplateGallery* gallery() const { return static_cast<TemplateGallery*>(object()); }
};

QAccessibleInterface* templateGalleryAccessible(const QString&, QObject* object)
{
    auto* gallery = qobject_cast<TemplateGallery*>(object);
    return gallery ? new GalleryAccessible(gallery) : nullptr;
}

}    // namespace

void makeTemplateGalleriesAccessible()
{
    QAccessible::installFactory(templateGalleryAccessible);
}
