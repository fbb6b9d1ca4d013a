#include "templates/MissingFonts.h"

#include "canvas/TextFitting.h"
#include "templates/TemplateDefinition.h"
#include "templates/TemplateName.h"

namespace {

// A design has one text for each slot; a file may have more.
constexpr qsizetype mostTexts = 8;

template <typename Texts, typename FontOf>
QString firstMissing(const Texts& texts, FontOf fontOf)
{
    for (const auto& text : texts.first(std::min(texts.size(), mostTexts))) {
        const QString font = fontOf(text);
        if (!font.isEmpty() && !ExportCanvasRenderer::isInstalled(font))
            return templateName(ExportCanvasRenderer::familyOf(font));
    }
    return {};
}

}    // namespace

QString missingFont(const JSONVisualTemplateDefinition& design)
{
    return firstMissing(design.textLayers, [](const JSONTextLayer& text) {
        return text.visible.value_or(true) ? text.fontName.value_or(QString()) : QString();
    });
}

QString missingFont(const VisualTemplate& design)
{
    return firstMissing(design.textLayers, [](const TextLayerTemplate& text) {
        return text.isVisible ? text.design.fontName : QString();
    });
}
