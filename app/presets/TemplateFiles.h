#pragma once

#include "templates/SavedTemplates.h"

enum class StatusKind;

// Definition files into the user's templates, and out of them.
class TemplateFiles : public QObject {
    Q_OBJECT
public:
    // `saved` outlives it.
    TemplateFiles(SavedTemplates& saved, QObject* parent);

    // What the file leaves out is taken from the item.
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
