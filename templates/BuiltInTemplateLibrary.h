#pragma once

#include "templates/TemplatePack.h"

// The designs of a pack; by default of the one that comes with the program.
class BuiltInTemplateLibrary {
public:
    explicit BuiltInTemplateLibrary(const QString& folder = QStringLiteral(":/templates/gallery"));

    const TemplatePack& pack() const { return m_pack; }    // empty if it cannot be read

    // In the order of the pack. Files that cannot be read are left out.
    QList<JSONVisualTemplateDefinition> definitions(SocialFormat format) const;

    // Converts a template to a definition, to be given away: without its preview, which shows a
    // photo of the user. A template without `order` gets the next one after the definitions of the
    // format.
    JSONVisualTemplateDefinition templateDefinition(const VisualTemplate& from, const QString& name,
                                                    SocialFormat format) const;

    static bool isWebPData(QByteArrayView bytes);

private:
    TemplatePack m_pack;
};
