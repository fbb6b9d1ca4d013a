#include "cli/SelfTest.h"

#include "account/LocalService.h"
#include "canvas/WebPEncoder.h"
#include "cli/shared/CommandHelp.h"
#include "cli/shared/Terminal.h"
#include "model/JsonMapping.h"
#include "platform/HttpClient.h"
#include "platform/PreferencesStore.h"
#include "platform/photo/PhotoDecoder.h"
#include "templates/BuiltInTemplateLibrary.h"

#include <QCoroTask>
#include <QFile>
#include <QFontDatabase>
#include <QLibraryInfo>
#include <QPainter>
#include <QProcess>
#include <QScopeGuard>
#include <QSslCertificate>
#include <QSslConfiguration>
#include <QSslKey>
#include <QSslServer>
#include <QSslSocket>
#include <QStandardPaths>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QTranslator>

#include <array>

using namespace Qt::StringLiterals;

namespace {

struct SelfTestLine {
    QString check, title;
    bool isFine = false;
    std::optional<QString> problem;
};

}    // namespace

template <>
struct json::JsonFields<SelfTestLine> {
    static constexpr auto fields = std::tuple{
        required("check", &SelfTestLine::check), required("title", &SelfTestLine::title),
        required("ok", &SelfTestLine::isFine), optional("problem", &SelfTestLine::problem)};
};

namespace {

constexpr std::chrono::seconds longestAnswer{10};
constexpr int longestStart = 10'000, longestEnding = 10'000;    // of the service, in ms

QByteArray embedded(const QString& name)
{
    QFile file(u":/selftest/"_s + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// A small photo of each format, red above blue. The pixels of the JPEG file are stored turned, with
// the orientation that sets them upright.
struct SamplePhoto {
    QStringView check, title, file;
};
constexpr std::array samplePhotos{
    SamplePhoto{u"jpeg", u"Fotos JPEG con su orientación", u"photo.jpg"},
    SamplePhoto{u"png", u"Fotos PNG", u"photo.png"},
    SamplePhoto{u"heic", u"Fotos HEIC", u"photo.heic"},
    SamplePhoto{u"tiff", u"Fotos TIFF", u"photo.tiff"},
    SamplePhoto{u"webp", u"Fotos WebP", u"photo.webp"},
    SamplePhoto{u"bmp", u"Fotos BMP", u"photo.bmp"},
    SamplePhoto{u"gif", u"Fotos GIF", u"photo.gif"},
};
constexpr QSize sampleSize{16, 24};

QString problemOfPhoto(const SamplePhoto& sample, const QString& folder)
{
    const QByteArray bytes = embedded(sample.file.toString());
    if (bytes.isEmpty())
        return u"falta la foto de prueba del programa."_s;
    // The decoder reads files, not resources.
    QFile file(folder + u'/' + sample.file.toString());
    if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
        return u"no se puede escribir en la carpeta temporal."_s;
    file.close();
    const std::optional<QImage> photo = decodePhoto(file.fileName(), PhotoLevel::full);
    if (!photo)
        return u"no se pueden leer: falta su decodificador."_s;
    const auto isOf = [&photo](int y, auto wanted, auto other) {
        const QColor color = photo->pixelColor(sampleSize.width() / 2, y);
        return (color.*wanted)() > 200 && (color.*other)() < 60;
    };
    const bool isRight = photo->size() == sampleSize && isOf(4, &QColor::red, &QColor::blue) &&
                         isOf(20, &QColor::blue, &QColor::red);
    return isRight ? QString() : u"se leen, pero salen mal."_s;
}

// The fonts of the interface, and those that the designs of the program name.
QString problemOfFonts()
{
    const QStringList families = QFontDatabase::families();
    QStringList missing;
    const auto want = [&](const QString& font) {
        const auto isOf = [&font](const QString& family) {
            return font == family || font.startsWith(family + u' ');
        };
        if (std::ranges::none_of(families, isOf) && !missing.contains(font))
            missing.append(font);
    };
    want(u"Inter"_s);
    if (!families.contains(u"Inter Display"_s))
        missing.append(u"Inter Display"_s);
    const BuiltInTemplateLibrary library;
    for (const SocialFormatRow& format : Vocabulary<SocialFormat>::rows) {
        for (const auto& definition : library.definitions(format.value)) {
            for (const JSONTextLayer& text : definition.textLayers) {
                if (text.fontName && *text.fontName != u"System"_s)
                    want(*text.fontName);
            }
        }
    }
    return missing.isEmpty() ? QString() : u"faltan %1."_s.arg(missing.join(u", "_s));
}

QString problemOfEmoji()
{
    constexpr int side = 48;
    QImage image(side, side, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    QFont font(u"Noto Color Emoji"_s);    // as texts on the canvas
    font.setPixelSize(side * 2 / 3);
    painter.setFont(font);
    painter.drawText(image.rect(), Qt::AlignCenter, u"😀"_s);
    painter.end();
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x) {
            if (image.pixelColor(x, y).saturation() > 100)
                return {};
        }
    }
    return u"no salen en color: falta su fuente."_s;
}

QString problemOfDatabase(const QString& folder)
{
    const QString file = folder + u"/selftest.sqlite"_s, key = u"moltiva.selfTest"_s;
    const QByteArray value = "un valor";
    {
        PreferencesStore store(file);
        const auto write = [&] { return store.setValue(key, value); };
        if (!store.transaction(write, PreferencesStore::Durability::onDisk)) {
            return store.reason().isEmpty() ? u"no se puede escribir: falta el módulo de SQLite."_s
                                            : u"no se puede escribir: %1."_s.arg(store.reason());
        }
    }
    const PreferencesStore again(file);
    return again.value(key) == value ? QString() : u"no devuelve lo que se ha guardado."_s;
}

// Asks `url` for its page. Returns why there is none; empty on success. Must not throw:
// QCoro::waitFor() would wait for ever.
QCoro::Task<QString> askedPage(HttpClient* client, QUrl url)
{
    HttpRequest request;
    request.url = url;
    request.timeout = longestAnswer;
    QString problem;
    QCoro::Task<HttpReply> asking = client->send(request);
    try {
        const HttpReply reply = co_await std::move(asking);
        constexpr int success = 200;
        if (reply.status != success)
            problem = u"contesta con el error %1."_s.arg(reply.status);
    } catch (const std::exception& error) {
        problem = QString::fromUtf8(error.what());
    }
    co_return problem;
}

QString problemOfPage(const QUrl& url)
{
    HttpClient client;
    return QCoro::waitFor(askedPage(&client, url));
}

// Asks a server on this machine whose certificate nobody trusts, and then again while only this
// program trusts it.
QString problemOfTls()
{
    if (!QSslSocket::supportsSsl())
        return u"falta el módulo de TLS."_s;
    if (QSslConfiguration::systemCaCertificates().isEmpty())
        return u"faltan los certificados de confianza del sistema."_s;
    const QSslCertificate certificate(embedded(u"certificate.pem"_s));
    QSslConfiguration own = QSslConfiguration::defaultConfiguration();
    own.setLocalCertificate(certificate);
    own.setPrivateKey(QSslKey(embedded(u"key.pem"_s), QSsl::Ec));
    QSslServer server;
    server.setSslConfiguration(own);
    QObject::connect(&server, &QTcpServer::pendingConnectionAvailable, &server, [&server] {
        QTcpSocket* socket = server.nextPendingConnection();
        QObject::connect(socket, &QTcpSocket::readyRead, socket, [socket] {
            socket->write("HTTP/1.1 200 OK\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
            socket->disconnectFromHost();
        });
    });
    if (!server.listen(QHostAddress::LocalHost))
        return u"no se puede abrir un puerto en este equipo: %1."_s.arg(server.errorString());
    const QUrl url(u"https://127.0.0.1:%1/"_s.arg(server.serverPort()));
    if (problemOfPage(url).isEmpty())
        return u"se acepta un servidor cuyo certificado no es de confianza."_s;
    const QSslConfiguration before = QSslConfiguration::defaultConfiguration();
    const auto restore = qScopeGuard([&] { QSslConfiguration::setDefaultConfiguration(before); });
    QSslConfiguration trusting = before;
    trusting.addCaCertificate(certificate);
    QSslConfiguration::setDefaultConfiguration(trusting);
    const QString problem = problemOfPage(url);
    return problem.isEmpty()
               ? QString()
               : u"no se acepta un certificado de confianza. %1"_s.arg(printable(problem));
}

QString problemOfService(const QString& folder)
{
    QProcess service;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const QString& name : {u"XDG_DATA_HOME"_s, u"XDG_CONFIG_HOME"_s, u"XDG_CACHE_HOME"_s,
                                u"XDG_STATE_HOME"_s, u"XDG_RUNTIME_DIR"_s})
        environment.insert(name, folder);
    service.setProcessEnvironment(environment);
    service.setWorkingDirectory(folder);
    const QString program = localServiceProgram();
    service.start(program,
                  {u"--data"_s, folder + u"/servicio"_s, u"--port"_s, u"0"_s, u"--until-unused"_s});
    if (!service.waitForStarted(longestStart))
        return u"no se puede ejecutar %1."_s.arg(program);
    while (!service.canReadLine() && service.waitForReadyRead(longestStart)) {
    }
    const QUrl address(QString::fromUtf8(service.readLine()).trimmed());
    QString problem;
    if (address.isEmpty()) {
        const QString told = QString::fromUtf8(service.readAllStandardError());
        problem = u"no arranca. %1"_s.arg(printable(told));
    } else if (const QString failure = problemOfPage(address); !failure.isEmpty()) {
        problem = u"no contesta. %1"_s.arg(printable(failure));
    }
    service.terminate();
    if (!service.waitForFinished(longestEnding)) {
        service.kill();
        service.waitForFinished(longestEnding);
        return problem.isEmpty() ? u"no termina."_s : problem;
    }
    return problem.isEmpty() && service.exitCode() != exitDone ? u"termina mal."_s : problem;
}

QString problemOfTranslations()
{
    QTranslator translator;
    return translator.load(u"qtbase_es"_s, QLibraryInfo::path(QLibraryInfo::TranslationsPath))
               ? QString()
               : u"no está la traducción de los diálogos."_s;
}

}    // namespace

QList<SelfTestResult> selfTest()
{
    const QTemporaryDir folder;
    const QString place = folder.path();
    QList<SelfTestResult> results;
    if (!folder.isValid())
        return {{u"folder"_s, u"Carpeta temporal"_s, u"no se puede crear."_s}};
    for (const SamplePhoto& sample : samplePhotos) {
        results.append(
            {sample.check.toString(), sample.title.toString(), problemOfPhoto(sample, place)});
    }
    const auto add = [&results](const QString& check, const QString& title,
                                const QString& problem) {
        results.append({check, title, problem});
    };
    const bool encodes = WebPEncoder::convert(embedded(u"photo.png"_s), 0.8).has_value();
    const bool opensLinks = !QStandardPaths::findExecutable(u"xdg-open"_s).isEmpty();
    add(u"cwebp"_s, u"Vistas previas WebP"_s,
        encodes ? QString() : u"el programa cwebp falta o falla."_s);
    add(u"fonts"_s, u"Fuentes"_s, problemOfFonts());
    add(u"emoji"_s, u"Emojis"_s, problemOfEmoji());
    add(u"translations"_s, u"Textos en español"_s, problemOfTranslations());
    add(u"database"_s, u"Base de datos"_s, problemOfDatabase(place));
    add(u"tls"_s, u"Conexiones cifradas"_s, problemOfTls());
    add(u"links"_s, u"Enlaces"_s,
        opensLinks ? QString() : u"falta el programa xdg-open, que abre el navegador."_s);
    add(u"service"_s, u"Servicio local de cuentas"_s, problemOfService(place));
    return results;
}

int runSelfTest(const QStringList& arguments)
{
    const QCommandLineOption help({u"h"_s, u"help"_s}, u"muestra esta ayuda"_s);
    const QCommandLineOption isJson(u"json"_s, u"un objeto JSON por comprobación"_s);
    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Comprueba que en este equipo está todo lo que Moltiva necesita, y dice lo que falta. No "
        "toca los datos de nadie."_s);
    parser.addOptions({help, isJson});
    const auto wrongUse = [](const QString& sentence) {
        print(stderr, u"moltiva --self-test: "_s + sentence);
        return exitWrongUse;
    };
    if (!parser.parse(QStringList{u"moltiva --self-test"_s} + arguments))
        return wrongUse(parser.errorText());
    if (parser.isSet(help)) {
        printCommandHelp(
            parser, u"--self-test [--json]"_s,
            {{exitDone, u"no falta nada"_s}, {exitSomeFailed, u"falta algo"_s}, {exitWrongUse}});
        return exitDone;
    }
    if (!parser.positionalArguments().isEmpty())
        return wrongUse(u"no espero «%1»."_s.arg(printable(parser.positionalArguments().first())));
    const QList<SelfTestResult> results = selfTest();
    int missing = 0;
    for (const SelfTestResult& result : results) {
        const bool isFine = result.problem.isEmpty();
        missing += isFine ? 0 : 1;
        if (parser.isSet(isJson)) {
            SelfTestLine line{result.check, result.title, isFine, {}};
            if (!isFine)
                line.problem = result.problem;
            print(stdout, QString::fromUtf8(json::written(line)));
        } else if (!isFine) {
            print(stdout, u"%1: %2"_s.arg(result.title, result.problem));
        }
    }
    if (missing == 0 && !parser.isSet(isJson))
        print(stdout, u"No falta nada."_s);
    return missing == 0 ? exitDone : exitSomeFailed;
}
