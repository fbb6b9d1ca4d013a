#pragma once

#include "model/SocialFormat.h"
#include "studio/sheet/TextSheet.h"
#include "templates/VisualTemplate.h"

#include <QCommandLineOption>
#include <QUrl>

#include <functional>

class QCommandLineParser;

// What the commands that render photos are given.
struct BatchOptions {
    SocialFormat format = SocialFormat::carouselPortrait;
    std::optional<TextSheet> texts;
    TemplateApplication design;    // applies a template; empty: the photos keep the standard design
    QList<QUrl> photos;            // URLs of local files
    QStringList unreachable;       // paths that no URL can hold: these photos cannot be opened
};

// The arguments from which BatchOptions are read. `tell` receives sentences that are no errors.
class BatchArguments {
public:
    using Tell = std::function<void(const QString& sentence)>;

    void addTo(QCommandLineParser& parser) const;
    // Both read what the parser has found, and return a sentence about wrong use; empty on success.
    QString readLooks(const QCommandLineParser& parser, BatchOptions& options,
                      const Tell& tell) const;
    static QString readPhotos(const QCommandLineParser& parser, BatchOptions& options,
                              const Tell& tell);

private:
    QString readDesign(const QCommandLineParser& parser, BatchOptions& options,
                       const Tell& tell) const;

    const QCommandLineOption m_format{formatOption()};
    const QCommandLineOption m_texts{QStringLiteral("texts"),
                                     QStringLiteral("textos de cada foto, de un archivo CSV"),
                                     QStringLiteral("archivo.csv")};
    const QCommandLineOption m_design{
        QStringLiteral("template"),
        QStringLiteral("plantilla de todas las fotos; sin --format, también su formato"),
        QStringLiteral("archivo.json")};

    static QCommandLineOption formatOption();
};
