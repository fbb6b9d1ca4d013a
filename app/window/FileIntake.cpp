#include "app/window/FileIntake.h"

#include "app/desktop/LocalFile.h"
#include "app/desktop/RecentPlaces.h"
#include "platform/PortalFileTransfer.h"
#include "platform/Workers.h"
#include "studio/StudioSession.h"
#include "studio/TextTransfer.h"

#include <QCoroFuture>
#include <QFileInfo>
#include <QMimeData>

#include <thread>

using namespace Qt::StringLiterals;

namespace {

const QString importFolderKey = u"moltiva.importFolder"_s;
// Milliseconds after open() in which another call adds its files to the same batch.
constexpr int moreMayCome = 1000;

// Filters of the file dialog. The second one shows every file: an image is recognised by its
// content, not by its name.
QString imageFilter()
{
    QStringList patterns;
    for (const QString& extension : {u"jpg"_s, u"jpeg"_s, u"png"_s, u"heic"_s, u"heif"_s, u"tif"_s,
                                     u"tiff"_s, u"webp"_s, u"bmp"_s, u"gif"_s}) {
        patterns.append(u"*."_s + extension);
        patterns.append(u"*."_s + extension.toUpper());
    }
    return u"Imágenes (%1);;Todos los archivos (*)"_s.arg(patterns.join(u' '));
}

bool isTextSheet(const QList<QUrl>& files)
{
    if (files.size() != 1)
        return false;
    const QFileInfo file(files.first().toLocalFile());
    return file.isFile() && file.suffix().compare(u"csv"_s, Qt::CaseInsensitive) == 0;
}

}    // namespace

FileIntake::FileIntake(StudioSession& session, PreferencesStore& preferences, QWidget* window)
    : QObject(window), m_session(session), m_window(window), m_folder(preferences, importFolderKey),
      m_recent(new RecentPlaces(preferences, this))
{
    m_forgetOpened.setSingleShot(true);
    connect(&m_forgetOpened, &QTimer::timeout, this, [this] {
        if (m_session.isImporting())
            m_forgetOpened.start(moreMayCome);
        else
            m_recentlyOpened.clear();
    });
}

void FileIntake::choosePhotos()
{
    choose(u"Importar imágenes"_s, QFileDialog::ExistingFiles);
}

void FileIntake::chooseFolder()
{
    choose(u"Importar carpeta"_s, QFileDialog::Directory);
}

void FileIntake::choose(const QString& title, QFileDialog::FileMode mode)
{
    auto* dialog = new QFileDialog(m_window, title, m_folder.begin());
    disposeOf(dialog);
    dialog->setFileMode(mode);
    // Without a filter for folders: the portal's dialog would let none be chosen but those whose
    // names end as images do.
    if (mode != QFileDialog::Directory)
        dialog->setNameFilter(imageFilter());
    // Connects to accepted(): native dialogs and Qt's own emit different signals with the files.
    connect(dialog, &QFileDialog::accepted, this, [this, dialog] { load(dialog->selectedUrls()); });
    dialog->open();
}

void FileIntake::chooseTexts(QFileDialog::AcceptMode mode)
{
    const bool isSaving = mode == QFileDialog::AcceptSave;
    auto* dialog =
        new QFileDialog(m_window, isSaving ? u"Exportar textos"_s : u"Importar textos"_s,
                        m_folder.begin(), u"Textos (*.csv *.CSV);;Todos los archivos (*)"_s);
    disposeOf(dialog);
    dialog->setAcceptMode(mode);
    dialog->setFileMode(isSaving ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
    if (isSaving) {
        dialog->setDefaultSuffix(u"csv"_s);
        dialog->selectFile(u"textos.csv"_s);
    }
    connect(dialog, &QFileDialog::accepted, this, [this, dialog, isSaving] {
        const QString path = dialog->selectedFiles().value(0);
        m_folder.remember(QFileInfo(path).absolutePath());
        if (isSaving)
            exportTexts(&m_session, path);
        else
            importTexts(&m_session, path);
    });
    dialog->open();
}

void FileIntake::load(const QList<QUrl>& filesAndFolders)
{
    if (filesAndFolders.isEmpty())
        return;
    m_recentlyOpened.clear();
    m_soughtPlace.clear();
    const QFileInfo first(filesAndFolders.first().toLocalFile());
    m_folder.remember(first.isDir() ? first.absoluteFilePath() : first.absolutePath());
    m_recent->remember(filesAndFolders);
    m_session.load(filesAndFolders);
}

void FileIntake::openRecent(const QString& path)
{
    if (m_soughtPlace == path)
        return;
    m_soughtPlace = path;
    m_session.setStatus(u"Buscando «%1»…"_s.arg(QFileInfo(path).fileName()));
    openWhenFound(this, path);
}

QCoro::Task<> FileIntake::openWhenFound(QPointer<FileIntake> self, QString path)
{
    // Nobody waits for this thread, not even the end of the program: a network folder may never
    // answer.
    QFuture<bool> looking =
        futureOf([path] { return QFileInfo::exists(path); },
                 [](std::function<void()> look) { std::thread(std::move(look)).detach(); });
    const bool isFound = co_await looking;
    if (!self || self->m_soughtPlace != path)
        co_return;    // the user has meanwhile imported or sought something else
    self->m_soughtPlace.clear();
    if (isFound) {
        self->load({QUrl::fromLocalFile(path)});
        co_return;
    }
    self->m_session.setStatus(u"No se encuentra «%1»."_s.arg(QFileInfo(path).fileName()),
                              StatusKind::warning);
    self->m_recent->look();
}

QList<QUrl> FileIntake::localFiles(const QMimeData* data)
{
    QList<QUrl> files;
    for (const QUrl& url : data->urls()) {
        const QUrl file = onThisMachine(url);
        if (file.isLocalFile())
            files.append(file);
    }
    return files;
}

// Prefers the list of files to the portal, which only a program in a sandbox needs: the paths in
// its list may not exist outside. Does not even ask for the key if the list serves: the window
// stands still until the other program answers, and some never do.
void FileIntake::receive(const QMimeData& data)
{
    const QList<QUrl> files = localFiles(&data);
    const bool allExist = !files.isEmpty() && std::ranges::all_of(files, [](const QUrl& file) {
        return QFileInfo::exists(file.toLocalFile());
    });
    const QByteArray key = allExist ? QByteArray() : portalTransferKey(data);
    if (!key.isEmpty())
        receiveThroughPortal(key);
    else if (!files.isEmpty())
        Q_EMIT received(files);
    else
        tellNothingCame();
}

void FileIntake::tellNothingCame()
{
    m_session.setStatus(u"El escritorio no ha entregado los archivos que has soltado."_s,
                        StatusKind::error);
}

QCoro::Task<> FileIntake::receiveThroughPortal(QByteArray key)
{
    const QPointer<FileIntake> self = this;
    const auto files = co_await portalFiles(key);
    if (!self)
        co_return;
    if (files)
        Q_EMIT received(*files);
    else
        tellNothingCame();
}

DropOffer FileIntake::offerOf(const QList<QUrl>& files) const
{
    DropOffer offer{.images = int(files.size())};
    offer.replaces = !m_session.batch().items.isEmpty();
    offer.texts = isTextSheet(files);
    if (offer.texts)
        offer.refusal = refusalOfTexts(m_session);
    offer.folder = std::ranges::any_of(
        files, [](const QUrl& url) { return QFileInfo(url.toLocalFile()).isDir(); });
    return offer;
}

void FileIntake::drop(const QList<QUrl>& files)
{
    if (isTextSheet(files))
        importTexts(&m_session, files.first().toLocalFile());
    else
        load(files);
}

void FileIntake::open(const QList<QUrl>& files)
{
    if (files.isEmpty())
        return;
    const QList<QUrl> all = m_recentlyOpened + files;
    load(all);
    m_recentlyOpened = all;
    m_forgetOpened.start(moreMayCome);
}
