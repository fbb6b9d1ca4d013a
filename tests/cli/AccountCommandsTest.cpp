#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace {

// Runs the program with its local service in a home folder of its own.
class AccountCommandsTest : public ::testing::Test {
protected:
    struct Outcome {
        int status = -1;
        QByteArray out, err;
    };

    Outcome run(const QStringList& arguments, const QByteArray& input = {})
    {
        QProcess process;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"XDG_DATA_HOME"_s, m_home.filePath(u"data"_s));
        environment.insert(u"XDG_CACHE_HOME"_s, m_home.filePath(u"cache"_s));
        environment.insert(u"XDG_CONFIG_HOME"_s, m_home.filePath(u"config"_s));
        environment.insert(u"XDG_RUNTIME_DIR"_s, m_home.path());
        process.setProcessEnvironment(environment);
        if (!m_output.isEmpty())
            process.setStandardOutputFile(m_output);
        process.start(QStringLiteral(MOLTIVA_PROGRAM), arguments);
        process.write(input);
        process.closeWriteChannel();
        EXPECT_TRUE(process.waitForFinished(60000));
        return {process.exitCode(), process.readAllStandardOutput(),
                process.readAllStandardError()};
    }
    bool isStoredAnywhere(const QByteArray& secret) const
    {
        QFile store(m_home.filePath(u"data/moltiva/moltiva.sqlite"_s));
        EXPECT_TRUE(store.open(QIODevice::ReadOnly));
        return store.readAll().contains(secret);
    }

    QTemporaryDir m_home;
    QString m_output;    // the file that gets the standard output; empty: a pipe
};

}    // namespace

TEST_F(AccountCommandsTest, ASessionGoesFromOneCommandToTheNext)
{
    const QStringList email{u"--email"_s, u"ana@ejemplo.es"_s};
    const Outcome made = run(QStringList{u"register"_s} + email, "una-contraseña\n");
    EXPECT_EQ(made.status, 0) << made.err.toStdString();
    EXPECT_EQ(made.out, "Cuenta creada.\n");
    EXPECT_EQ(run({u"account"_s}).out, "ana@ejemplo.es\n10000 créditos\n");
    EXPECT_EQ(run({u"account"_s, u"--json"_s}).out,
              R"({"name":"ana@ejemplo.es","email":"ana@ejemplo.es","balance":10000})"
              "\n");
    EXPECT_EQ(run({u"history"_s}).out, "Sin compras recientes\n");
    EXPECT_EQ(run({u"logout"_s}).out, "Sesión cerrada.\n");

    const Outcome none = run({u"account"_s});
    EXPECT_EQ(none.status, 3);
    EXPECT_EQ(none.err, "moltiva account: Necesitas iniciar sesión.\n");
    EXPECT_EQ(run({u"history"_s}).status, 3);
    EXPECT_EQ(run({u"history"_s, u"--service"_s, u"http://127.0.0.1:1"_s}).status, 5);
    const Outcome wrong = run(QStringList{u"login"_s} + email, "otra-contraseña\n");
    EXPECT_EQ(wrong.status, 1);
    EXPECT_EQ(wrong.err, "moltiva login: Email o contraseña incorrectos.\n");
    EXPECT_EQ(run(QStringList{u"login"_s} + email, "una-contraseña\r\n").status, 0);
    EXPECT_FALSE(isStoredAnywhere("una-contraseña"));
}

TEST_F(AccountCommandsTest, AnExportIsPaidFromTheBalanceOnce)
{
    EXPECT_EQ(run({u"export"_s, u"--sample"_s, u"--dry-run"_s}).status, 3);
    run({u"register"_s, u"--email"_s, u"ana@ejemplo.es"_s}, "una-contraseña\n");
    const QStringList command{u"export"_s, u"--sample"_s, u"--out"_s, m_home.filePath(u"out"_s)};
    for (int time = 0; time < 2; ++time) {
        EXPECT_EQ(run(command).status, 0);
        EXPECT_TRUE(run({u"account"_s}).out.contains("9850 créditos"));
    }
    EXPECT_EQ(QDir(m_home.filePath(u"out"_s)).entryList(QDir::Files).size(), 3);
    EXPECT_TRUE(QDir(m_home.filePath(u"cache/moltiva/exports"_s)).entryList(QDir::Files).isEmpty());
}

TEST_F(AccountCommandsTest, ASessionThatCannotBeKeptIsNoSignIn)
{
    QDir().mkpath(m_home.filePath(u"data/moltiva/moltiva.sqlite/inside"_s));
    QDir(m_home.path()).mkpath(u"data/moltiva/service"_s);
    const QStringList email{u"--email"_s, u"ana@ejemplo.es"_s};
    const Outcome aside = run(QStringList{u"register"_s} + email, "una-contraseña\n");
    EXPECT_EQ(aside.status, 0) << aside.err.toStdString();
    EXPECT_TRUE(aside.err.contains("en su lugar hay una carpeta"));
    EXPECT_EQ(run({u"account"_s}).status, 0);
    run({u"logout"_s});

    // All names under which the damaged store could be set aside are taken.
    const QString store = m_home.filePath(u"data/moltiva/moltiva.sqlite"_s);
    QFile::remove(store);
    QDir().mkpath(store);
    for (int number = 2; number < 100; ++number)
        QDir().mkpath(store + u".damaged-%1"_s.arg(number));
    const Outcome lost = run(QStringList{u"login"_s} + email, "una-contraseña\n");
    EXPECT_EQ(lost.status, 1);
    EXPECT_TRUE(lost.err.contains("la sesión no se ha podido guardar")) << lost.err.toStdString();
}

TEST_F(AccountCommandsTest, WrongUseIsToldBeforeAnythingIsSent)
{
    EXPECT_EQ(run({u"login"_s}).status, 2);
    m_output = u"/dev/full"_s;
    for (const QString& argument : {u"--help"_s, u"--version"_s}) {
        const Outcome full = run({argument});
        EXPECT_EQ(full.status, 1);
        EXPECT_EQ(full.err, "moltiva: no se pudo escribir el resultado en la salida estándar.\n");
    }
    m_output.clear();
    EXPECT_EQ(run({u"logout"_s, u"ahora"_s}).status, 2);
    EXPECT_EQ(run({u"account"_s, u"--service"_s, u"http://example.org"_s}).status, 2);
    EXPECT_EQ(run({u"login"_s, u"--email"_s, u"a@b.es"_s}).status, 1);    // no password given
    EXPECT_EQ(run({u"login"_s, u"--email"_s, u"a@b.es"_s}, QByteArray(5000, 'x')).status, 1);
    EXPECT_EQ(run({u"login"_s, u"--email"_s, u"a@b.es"_s}, "contrase\xF1"
                                                           "a\n")
                  .err,
              "moltiva login: la contraseña no está escrita en UTF-8.\n");
    EXPECT_EQ(run({u"register"_s, u"--email"_s, u"a@b.es"_s}, "corta\n").err,
              "moltiva register: La contraseña necesita al menos 8 caracteres.\n");
    EXPECT_EQ(run({u"register"_s, u"--email"_s, u"ana"_s}, "una-contraseña\n").err,
              "moltiva register: Escribe un email válido.\n");
    EXPECT_FALSE(QDir(m_home.filePath(u"data/moltiva/service"_s)).exists());
}
