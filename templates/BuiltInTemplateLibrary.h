#pragma once

#include "templates/TemplateDefinition.h"

// The template definitions in a folder; by default those that come with the program.
class BuiltInTemplateLibrary {
public:
    explicit BuiltInTemplateLibrary(const QString& folder = QStringLiteral(":/templates/gallery"));

    // Sorted by their `order`. Files that cannot be read are left out.
    QList<JSONVisualTemplateDefinition> definitions(SocialFormat format) const;

    // Converts a template to a definition, to be written to a file. A template without `order` gets
    // the next one after the definitions of the format.
    JSONVisualTemplateDefinition templateDefinition(const VisualTemplate& from, const QString& name,
                                                    SocialFormat format) const;

    static bool isWebPData(QByteArrayView bytes);

private:
    QList<JSONVisualTemplateDefinition> m_definitions;
};
