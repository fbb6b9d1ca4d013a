#include "studio/templates/SharedTemplates.h"
#include "account/AccountAPI.h"
#include "account/AccountSession.h"
#include "platform/PreferencesStore.h"
#include "platform/Workers.h"
#include "platform/photo/PhotoCache.h"
#include "studio/templates/TemplateLibrary.h"
#include "tests/account/Awaited.h"
#include "tests/service/TestService.h"
#include "tests/studio/FaultyProxy.h"
#include "tests/support/ScriptedAccount.h"

#include <QCoroSignal>
#include <QCryptographicHash>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

JSONVisualTemplateDefinition design(const QString& name, int order = 1)
{
    JSONVisualTemplateDefinition definition;
    definition.id = QUuid::createUuid();
    definition.order = order;
    definition.name = name;
    definition.format = u"square"_s;
    definition.previewPNGBase64 = "the photo of whoever made it";
    definition.shapeLayers.append(JSONShapeLayer());
    return definition;
}

QStringList namesIn(const SharedTemplates& shared)
{
    QStringList names;
    for (const SharedDesign& each : shared.designs())
        names.append(each.definition.name);
    return names;
}

// A program with a home folder of its own.
struct Program {
    Program(const QString& home, const QUrl& address)
        : configuration{.service = address,
                        .site = address,
                        .siteName = u"Moltiva local"_s,
                        .administratorEmail = u"jefa@ejemplo.es"_s,
                        .problem = {}},
          preferences(home + u"/moltiva.sqlite"_s), api(configuration, preferences),
          account(api, {.openInBrowser = [](const QUrl&) { return false; }}),
          shared(api, account, home)
    {
    }
    void enter(const QString& mail)
    {
        const QString password = QString::fromUtf8(TestService::password);
        if (!awaited(account.login(mail, password))) {
            EXPECT_TRUE(awaited(account.registerAccount(mail, password)));
        }
        synchronize();
    }
    void synchronize() { awaited(shared.refreshed()); }

    ServiceConfiguration configuration;
    PreferencesStore preferences;
    AccountAPI api;
    AccountSession account;
    SharedTemplates shared;
};

class SharedTemplatesTest : public ::testing::Test {
protected:
    ~SharedTemplatesTest() override { workers().waitForDone(); }

    QString home(const QString& name) const
    {
        QDir(m_folder.path()).mkpath(name);
        return m_folder.filePath(name);
    }

    TestService m_service;
    FaultyProxy m_proxy{m_service.port()};
    QTemporaryDir m_folder;
};

// A service whose catalogue a test makes up.
class HostileCatalogueTest : public ::testing::Test {
protected:
    HostileCatalogueTest()
    {
        EXPECT_TRUE(awaited(m_account.session().bootstrap()));
        m_shared.emplace(m_account.api(), m_account.session(), m_home.path());
    }
    ~HostileCatalogueTest() override { workers().waitForDone(); }

    void list(const QByteArray& manifest, const QByteArray& since = {})
    {
        m_account.answer("GET /api/publicaciones/templates" + since, manifest, 200);
    }
    static QByteArray entry(const QByteArray& name, const QByteArray& bytes)
    {
        return R"({"fileName":")" + name + R"(","sha256":")" + digest(bytes) + R"(","bytes":)" +
               QByteArray::number(bytes.size()) + R"(,"updatedAt":""})";
    }
    void file(const QByteArray& name, const QByteArray& bytes)
    {
        m_account.answer(
            "GET /api/publicaciones/templates/file?name=" + name,
            R"({"fileName":"","sha256":"","jsonBase64":")" + bytes.toBase64() + R"("})", 200);
    }
    static QByteArray digest(const QByteArray& bytes)
    {
        return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
    }
    QStringList names()
    {
        awaited(m_shared->refreshed());
        return namesIn(*m_shared);
    }

    QTemporaryDir m_home;
    PreferencesStore m_preferences{m_home.filePath(u"p.sqlite"_s)};
    ScriptedAccount m_account{m_preferences, Scripted::signedIn};
    std::optional<SharedTemplates> m_shared;
};

constexpr auto nameA = "00000000-0000-4000-8000-00000000000a.json";
constexpr auto nameB = "00000000-0000-4000-8000-00000000000b.json";
const QByteArray designA = R"({"name":"A","order":1,"textLayers":[]})";
const QByteArray designA2 = R"({"name":"A dos","order":1,"textLayers":[]})";
const QByteArray designB = R"({"name":"B","order":2,"textLayers":[]})";

}    // namespace

TEST_F(SharedTemplatesTest, WhatAnAdministratorDoesReachesEverybodyAndCanBeTakenBack)
{
    Program chief(home(u"jefa"_s), m_proxy.url()), member(home(u"ana"_s), m_proxy.url());
    EXPECT_EQ(chief.shared.state(), CatalogueState::none);
    chief.enter(u"jefa@ejemplo.es"_s);
    member.enter(u"ana@ejemplo.es"_s);
    EXPECT_TRUE(chief.shared.isAdministrator() && !member.shared.isAdministrator());
    EXPECT_EQ(member.shared.state(), CatalogueState::upToDate);

    const JSONVisualTemplateDefinition offer = design(u"Oferta"_s);
    const QString file = catalogueFileName(offer.id);
    EXPECT_EQ(awaited(member.shared.share(offer)),
              u"Solo una cuenta administradora puede actualizar plantillas."_s);
    EXPECT_EQ(awaited(chief.shared.share(offer)), QString());
    EXPECT_EQ(awaited(chief.shared.share(design(u"Cita"_s, 2))), QString());
    member.synchronize();
    EXPECT_EQ(namesIn(member.shared), (QStringList{u"Oferta"_s, u"Cita"_s}));
    EXPECT_EQ(member.shared.designs().first().definition.id, offer.id);
    EXPECT_FALSE(awaited(member.api.templateFile(file)).jsonBase64.contains("preview"));

    EXPECT_EQ(awaited(chief.shared.rename(file, u" Gran\n oferta "_s)), QString());
    EXPECT_EQ(awaited(chief.shared.rename(file, u" "_s)),
              u"Escribe un nombre para la plantilla."_s);
    member.synchronize();
    EXPECT_EQ(namesIn(member.shared).first(), u"Gran oferta"_s);
    EXPECT_EQ(member.shared.designs().first().keptVersions, 1);
    JSONVisualTemplateDefinition other = design(u"Da igual"_s, 9);
    other.shapeLayers.append(JSONShapeLayer());
    EXPECT_EQ(awaited(chief.shared.replaceWith(file, other)), QString());
    member.synchronize();
    const SharedDesign replaced = member.shared.designs().first();
    EXPECT_EQ(replaced.definition.name, u"Gran oferta"_s);
    EXPECT_EQ(replaced.definition.id, offer.id);
    EXPECT_EQ(replaced.definition.shapeLayers.size(), 2);
    EXPECT_EQ(awaited(chief.shared.restore(file)), QString());
    member.synchronize();
    EXPECT_EQ(member.shared.designs().first().definition.shapeLayers.size(), 1);

    EXPECT_EQ(awaited(chief.shared.withdraw(file)), QString());
    member.synchronize();
    EXPECT_EQ(namesIn(member.shared), QStringList{u"Cita"_s});
    EXPECT_EQ(member.shared.withdrawn(), QSet{offer.id});
    EXPECT_EQ(awaited(chief.shared.rename(file, u"X"_s)),
              u"Esa plantilla ya no está en el catálogo del equipo."_s);
    EXPECT_EQ(awaited(chief.shared.restore(file)), QString());
    member.synchronize();
    EXPECT_EQ(namesIn(member.shared).first(), u"Gran oferta"_s);
    EXPECT_TRUE(member.shared.withdrawn().isEmpty());
    EXPECT_EQ(awaited(chief.shared.restore(chief.shared.designs().last().fileName)),
              u"No hay ninguna versión anterior guardada."_s);
}

TEST_F(SharedTemplatesTest, TheLibraryShowsWhatIsSharedAndHidesWhatIsWithdrawn)
{
    Program chief(home(u"jefa"_s), m_proxy.url());
    SavedTemplates saved(chief.preferences,
                         std::make_shared<PhotoCache>(home(u"jefa"_s) + u"/thumbnails"_s));
    TemplateLibrary library(saved, &chief.shared, chief.preferences, home(u"jefa"_s));
    library.load();
    constexpr SocialFormat format = SocialFormat::square;
    const auto listed = [&](const QStringList& expected) {
        const auto shown = [&] {
            QStringList sections;
            for (const LibrarySection& section : library.sections(format))
                sections.append(u"%1 %2"_s.arg(section.title).arg(section.designs.size()));
            return sections;
        };
        while (shown() != expected)
            QCoro::waitFor(qCoro(&library, &TemplateLibrary::changed));
    };
    listed({u"Mis plantillas 0"_s, u"De Moltiva 15"_s});
    chief.enter(u"jefa@ejemplo.es"_s);

    // The user's own template is shared, and changes afterwards: both have the same id.
    const PublicationItem item = PublicationItem::make({}, {});
    const VisualTemplate own = VisualTemplate::of(item, u"Mía"_s, format);
    saved.addTemplate(own);
    EXPECT_EQ(awaited(chief.shared.share(*library.definition(own.id, format))), QString());
    saved.renameTemplate(own.id, u"Otra"_s);
    listed({u"Mis plantillas 1"_s, u"Del equipo 1"_s, u"De Moltiva 15"_s});
    const LibraryDesign team = library.sections(format)[1].designs.first();
    EXPECT_EQ(team.fileName, catalogueFileName(own.id));
    EXPECT_EQ(library.find(team.id)->name, u"Mía"_s);
    EXPECT_EQ(library.find(own.id)->name, u"Otra"_s);

    const QUuid packaged = library.sections(format)[2].designs.first().id;
    auto withdrawn = library.definition(packaged, format);
    EXPECT_EQ(awaited(chief.shared.share(*withdrawn)), QString());
    EXPECT_EQ(awaited(chief.shared.withdraw(catalogueFileName(packaged))), QString());
    listed({u"Mis plantillas 1"_s, u"Del equipo 1"_s, u"De Moltiva 14"_s});
    EXPECT_FALSE(library.find(packaged));
}

TEST_F(SharedTemplatesTest, OfTwoAdministratorsTheLaterWinsAndTheEarlierComesBack)
{
    Program one(home(u"una"_s), m_proxy.url()), two(home(u"otra"_s), m_proxy.url());
    one.enter(u"jefa@ejemplo.es"_s);
    const JSONVisualTemplateDefinition offer = design(u"Oferta"_s);
    const QString file = catalogueFileName(offer.id);
    awaited(one.shared.share(offer));
    two.enter(u"jefa@ejemplo.es"_s);
    EXPECT_EQ(awaited(one.shared.rename(file, u"Primera"_s)), QString());
    EXPECT_EQ(awaited(two.shared.rename(file, u"Segunda"_s)), QString());
    one.synchronize();
    EXPECT_EQ(namesIn(one.shared), QStringList{u"Segunda"_s});
    EXPECT_EQ(awaited(one.shared.restore(file)), QString());
    two.synchronize();
    EXPECT_EQ(namesIn(two.shared), QStringList{u"Primera"_s});
}

TEST_F(SharedTemplatesTest, WithoutTheServiceTheCopyServes)
{
    {
        Program program(home(u"ana"_s), m_proxy.url());
        program.enter(u"jefa@ejemplo.es"_s);
        awaited(program.shared.share(design(u"Oferta"_s)));
        program.synchronize();
    }
    m_proxy.spoil("/api/auth/me", Fault::noConnection);
    Program program(home(u"ana"_s), m_proxy.url());
    awaited(program.account.bootstrap());
    program.synchronize();
    EXPECT_EQ(program.shared.state(), CatalogueState::offline);
    EXPECT_TRUE(program.shared.isUnreachable());
    EXPECT_EQ(namesIn(program.shared), QStringList{u"Oferta"_s});
    EXPECT_EQ(program.shared.copied().toLocalTime().date(), QDate::currentDate());
    EXPECT_FALSE(awaited(program.shared.share(design(u"Otra"_s))).isEmpty());

    m_proxy.heal();
    program.synchronize();
    EXPECT_EQ(program.shared.state(), CatalogueState::upToDate);
    EXPECT_EQ(program.shared.problem(), QString());
    EXPECT_TRUE(awaited(program.account.refresh()));
    awaited(program.account.logout());
    EXPECT_EQ(program.shared.state(), CatalogueState::refused);
    EXPECT_EQ(program.shared.problem(), u"Necesitas iniciar sesión."_s);
    Program elsewhere(home(u"ana"_s), QUrl(u"http://127.0.0.1:1"_s));
    elsewhere.synchronize();
    EXPECT_EQ(elsewhere.shared.state(), CatalogueState::none) << "a copy belongs to one service";
}

TEST_F(SharedTemplatesTest, ADownloadThatBreaksOffKeepsTheOldFile)
{
    Program chief(home(u"jefa"_s), QUrl(QString::fromStdString(m_service.address())));
    chief.enter(u"jefa@ejemplo.es"_s);
    const JSONVisualTemplateDefinition offer = design(u"Oferta"_s), quote = design(u"Cita"_s, 2);
    awaited(chief.shared.share(offer));
    Program member(home(u"ana"_s), m_proxy.url());
    member.enter(u"ana@ejemplo.es"_s);
    const QString file = catalogueFileName(offer.id);
    awaited(chief.shared.rename(file, u"Gran oferta"_s));
    awaited(chief.shared.share(quote));
    m_proxy.spoil("/api/publicaciones/templates/file?name=" + file.toUtf8(), Fault::errorBefore);
    member.synchronize();
    EXPECT_EQ(namesIn(member.shared), (QStringList{u"Oferta"_s, u"Cita"_s}));
    EXPECT_EQ(member.shared.state(), CatalogueState::refused);
    EXPECT_EQ(member.shared.problem(),
              u"Una plantilla del equipo no se ha podido descargar y queda como estaba. "
              "No se ha podido completar la operación."_s);
    m_proxy.spoil("/api/publicaciones/templates/file?name=" + file.toUtf8(), Fault::resetAfter);
    member.synchronize();
    EXPECT_EQ(namesIn(member.shared), (QStringList{u"Oferta"_s, u"Cita"_s}));
    EXPECT_EQ(member.shared.state(), CatalogueState::offline);
    m_proxy.heal();
    member.synchronize();
    EXPECT_EQ(namesIn(member.shared), (QStringList{u"Gran oferta"_s, u"Cita"_s}));
    EXPECT_EQ(member.shared.state(), CatalogueState::upToDate);
}

TEST_F(HostileCatalogueTest, AWrongDigestKeepsTheOldFileAndIsTold)
{
    EXPECT_EQ(names(), QStringList()) << "a service without a catalogue";
    EXPECT_EQ(m_shared->state(), CatalogueState::none);
    list(R"({"version":"1","templates":[)" + entry(nameA, designA) + R"(],"deleted":[]})");
    file(nameA, designA);
    EXPECT_EQ(names(), QStringList{u"A"_s});

    const QByteArray changed = R"({"version":"2","templates":[)" + entry(nameA, designA2) + ',' +
                               entry(nameB, designB) + R"(],"deleted":[]})";
    list(changed, "?since=1");
    list(changed);
    file(nameB, designB);
    EXPECT_EQ(names(), (QStringList{u"A"_s, u"B"_s}));
    EXPECT_EQ(m_shared->problem(),
              u"Una plantilla del equipo no se ha podido descargar y queda como estaba. "
              "El servidor ha enviado otra cosa que la anunciada."_s);
    file(nameA, designA2);
    EXPECT_EQ(names(), (QStringList{u"A dos"_s, u"B"_s}));
    EXPECT_EQ(m_shared->state(), CatalogueState::upToDate);

    const QDir copies(m_home.filePath(u"catalogue"_s));
    const QString place =
        copies.filePath(copies.entryList(QDir::AllDirs | QDir::NoDotAndDotDot)[0]);
    QFile stored(place + u'/' + QString::fromLatin1(digest(designB)) + u".json"_s);
    ASSERT_TRUE(stored.open(QIODevice::WriteOnly) && stored.write("damaged") > 0);
    stored.close();
    m_shared.emplace(m_account.api(), m_account.session(), m_home.path());
    m_account.hold("GET /api/publicaciones/templates");
    while (m_shared->designs().isEmpty())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    EXPECT_EQ(namesIn(*m_shared), QStringList{u"A dos"_s});
    EXPECT_EQ(m_shared->problem(), u"Una plantilla de la copia del catálogo estaba dañada."_s);
    m_account.release();
    EXPECT_EQ(names(), (QStringList{u"A dos"_s, u"B"_s})) << "fetched anew";
}

TEST_F(HostileCatalogueTest, AHostileListChangesNothingOutsideTheCopy)
{
    list(R"({"version":"1","templates":[)" + entry(nameA, designA) + R"(],"deleted":[]})");
    file(nameA, designA);
    EXPECT_EQ(names(), QStringList{u"A"_s});
    const auto everything = [this] {
        return QDir(m_home.path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot);
    };
    const QStringList before = everything();

    QByteArray many = R"({"version":"2","templates":[)";
    for (int i = 0; i < 100'000; ++i)
        many += entry("../" + QByteArray::number(i) + ".json", "{}") + ',';
    many += entry(nameB, designB) + R"(],"deleted":["../x"]})";
    list(many, "?since=1");
    EXPECT_EQ(names(), QStringList{u"A"_s});
    EXPECT_EQ(m_shared->state(), CatalogueState::refused);
    EXPECT_FALSE(m_shared->problem().isEmpty());
    list(R"({"version":")" + QByteArray(10 << 20, 'x') + R"("})", "?since=1");
    EXPECT_EQ(names(), QStringList{u"A"_s});
    EXPECT_FALSE(m_shared->problem().isEmpty());

    file(nameB, designB);
    list(R"({"version":"3","templates":[)" + entry("../x.json", designB) + ',' +
             entry("/tmp/x.json", designB) + ',' + entry(nameB, designB) +
             R"(],"deleted":["../x","00000000-0000-4000-8000-00000000000a.json"]})",
         "?since=1");
    EXPECT_EQ(names(), QStringList{u"B"_s});
    EXPECT_EQ(m_shared->withdrawn(), QSet{catalogueId(QString::fromLatin1(nameA))});
    EXPECT_EQ(m_shared->state(), CatalogueState::upToDate);
    EXPECT_EQ(everything(), before);

    m_account.answer("POST /api/auth/logout", R"({"ok":true})");
    m_account.hold("GET /api/publicaciones/templates/file");
    list(R"({"version":"4","templates":[)" + entry(nameA, designA2) + ',' + entry(nameB, designB) +
         R"(],"deleted":[]})");
    file(nameA, designA2);
    m_shared->refresh();
    while (!m_account.log().last().startsWith("GET /api/publicaciones/templates/file"))
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    EXPECT_TRUE(awaited(m_account.session().logout()));
    m_account.release();
    EXPECT_EQ(names(), QStringList{u"B"_s}) << "signing out stops what is under way";
    EXPECT_EQ(m_shared->state(), CatalogueState::refused);
    EXPECT_EQ(m_shared->problem(), u"Necesitas iniciar sesión."_s);
}
