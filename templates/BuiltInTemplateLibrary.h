#pragma once

#include "templates/TemplateDefinition.h"

// The designs of a folder of definition files; by default those that come with the program.
class BuiltInTemplateLibrary {
public:
    explicit BuiltInTemplateLibrary(const QString& folder = QStringLiteral(":/templates/gallery"));

    // In the order of the list. What does not read is passed over.
    QList<JSONVisualTemplateDefinition> definitions(SocialFormat format) const;

    // A template as a definition file holds it. Without an order of its own it comes after those of
    // the format.
    JSONVisualTemplateDefinition templateDefinition(const VisualTemplate& from, const QString& name,
                                                    SocialFormat format) const;

    static bool isWebPData(QByteArrayView bytes);

private:
    QList<JSONVisualTemplateDefinition> m_definitions;
};
