#include "app/window/StudioFocus.h"

#include "app/batch/BatchColumn.h"
#include "app/controls/KeyHint.h"
#include "app/controls/fields/LineField.h"
#include "app/copy/ComposeBar.h"
#include "app/layers/SidePanel.h"
#include "app/layers/TextPanel.h"
#include "app/presets/PresetGrid.h"
#include "app/presets/TemplateGallery.h"
#include "app/stage/EmptyState.h"
#include "app/stage/StagePanel.h"
#include "app/stage/ViewBar.h"
#include "app/theme/KeyboardFocus.h"
#include "app/window/StatusLine.h"
#include "app/window/StudioShell.h"
#include "canvas/interaction/CanvasInteractionView.h"
#include "studio/batch/Batch.h"

#include <QLineEdit>

using namespace Qt::StringLiterals;

namespace {

QList<KeyHint> hintsOnCanvas(const Batch& batch)
{
    const PublicationItem* item = batch.currentItem();
    if (!item)
        return {};
    if (batch.selectedLayerID.isNull())
        return {{{}, u"Arrastra para mover la foto"_s}, {{}, u"Rueda para ampliar"_s}};
    const bool isShape = std::ranges::find(item->shapeLayers, batch.selectedLayerID,
                                           &ShapeLayer::id) != item->shapeLayers.end();
    QList<KeyHint> hints;
    if (batch.items.size() > 1)
        hints.append({{u"←"_s, u"→"_s}, u"Cambiar imagen"_s});
    hints.append({{u"Supr"_s}, isShape ? u"Eliminar forma"_s : u"Ocultar capa"_s});
    return hints;
}

}    // namespace

StudioFocus::StudioFocus(StudioShell* shell, QWidget* window)
    : QObject(window), m_shell(shell), m_window(window)
{
}

void StudioFocus::goToCanvas()
{
    if (m_shell->isStage(StudioShell::Stage::picture))
        m_shell->stage()->canvas()->setFocus(KeyboardFocus::reason());
    else
        m_shell->emptyState()->takeFocus(KeyboardFocus::reason());
}

void StudioFocus::goToRegion(int step)
{
    struct Region {
        QWidget* region;
        QList<QWidget*> stops;
    };
    const QList<Region> regions{
        {m_shell->topBar(), m_shell->topBar()->focusOrder()},
        {m_shell->batchColumn(), m_shell->batchColumn()->focusOrder()},
        {m_shell->composeBar(), m_shell->composeBar()->focusOrder()},
        {m_shell->emptyState(), m_shell->emptyState()->focusOrder()},
        {m_shell->stage(), {m_shell->stage()->canvas()}},
        {m_shell->viewBar(), m_shell->viewBar()->focusOrder()},
        {m_shell->sidePanel(), m_shell->sidePanel()->focusOrder()},
        {m_shell->statusLine(), m_shell->statusLine()->focusOrder()},
    };
    const QWidget* focused = m_window->focusWidget();
    qsizetype at = step > 0 ? -1 : regions.size();
    for (qsizetype i = 0; i < regions.size(); ++i) {
        if (focused && (regions[i].region == focused || regions[i].region->isAncestorOf(focused)))
            at = i;
    }
    for (qsizetype tried = 0; tried < regions.size(); ++tried) {
        at = (at + step + regions.size()) % regions.size();
        const auto usable = std::ranges::find_if(regions[at].stops, [](const QWidget* stop) {
            return stop->isVisible() && stop->isEnabled();
        });
        if (usable != regions[at].stops.end())
            return (*usable)->setFocus(Qt::TabFocusReason);
    }
}

void StudioFocus::endEdits()
{
    m_shell->stage()->canvas()->interaction().cancel();
    // A sheet that covers the studio keeps the focus in its own fields.
    const auto* field = qobject_cast<LineField*>(m_window->focusWidget());
    if (field && m_shell->isAncestorOf(field))
        goToCanvas();
    m_shell->sidePanel()->endEdits();
    m_shell->viewBar()->endEdits();
}

QList<KeyHint> StudioFocus::hints(const Batch& batch) const
{
    QWidget* focused = m_window->focusWidget();
    const TextPanel* texts = m_shell->sidePanel()->textPanel();
    if (texts->editedSlot() || texts->isCaptionEdited())
        return {{{u"Av Pág"_s}, u"Imagen siguiente"_s}, {{u"Esc"_s}, u"Volver al lienzo"_s}};
    if (qobject_cast<PresetGrid*>(focused))
        return {{{u"Intro"_s}, u"Aplicar"_s},
                {{u"F2"_s}, u"Renombrar"_s},
                {{u"Supr"_s}, u"Eliminar"_s}};
    if (qobject_cast<TemplateGallery*>(focused))
        return {{{u"R"_s}, u"Otra al azar"_s}, {{u"Espacio"_s}, u"Vista previa grande"_s}};
    const QWidget* around = focused ? focused->parentWidget() : nullptr;
    const bool isName = qobject_cast<const PresetGrid*>(around) ||
                        (around && qobject_cast<TemplateGallery*>(around->parentWidget()));
    if (isName)
        return {{{u"Intro"_s}, u"Guardar el nombre"_s}, {{u"Esc"_s}, u"Cancelar"_s}};
    if (qobject_cast<QLineEdit*>(focused))
        return {{{u"Esc"_s}, u"Volver al lienzo"_s}};
    return hintsOnCanvas(batch);
}
