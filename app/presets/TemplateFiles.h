#pragma once

#include "templates/SavedTemplates.h"

enum class StatusKind;

// Imports definition files into the user's templates, and exports templates to files.
class TemplateFiles : public QObject {
    Q_OBJECT
public:
    // `saved` outlives this object.
    TemplateFiles(SavedTemplates& saved, QObject* parent);

    // Properties that the file leaves out are taken from `item`.
    void read(const QString& path, const PublicationItem& item);
    void write(const QString& path, const JSONVisualTemplateDefinition& definition);

Q_SIGNALS:
    void imported(const QString& name, SocialFormat format);
    void told(const QString& sentence, StatusKind tone);

private:
    static QCoro::Task<> runReading(QPointer<TemplateFiles> self, QString path,
                                    PublicationItem item);
    void finishReading(const DefinitionFile& file, const QString& path,
                       const PublicationItem& item);
    static QCoro::Task<> runWriting(QPointer<TemplateFiles> self, QString path, QString name,
                                    QByteArray bytes);

    SavedTemplates& m_saved;
};
