#include "app/export/ExportDialogs.h"

#include "studio/StudioSession.h"
#include "studio/export/ExportPaths.h"

#include <QFileDialog>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace {

const QString exportFolderKey = u"moltiva.exportFolder"_s;

// Compares file names first: canonicalFilePath() reads every folder of a path, which is too slow
// for all photos of a batch.
bool isPhotoOf(const Batch& batch, const QString& path)
{
    const QString file = QFileInfo(path).canonicalFilePath();
    if (file.isEmpty())
        return false;    // there is no such file yet
    const QString name = QFileInfo(file).fileName();
    return std::ranges::any_of(batch.items, [&](const PublicationItem& item) {
        const QFileInfo photo(item.url.toLocalFile());
        return (photo.fileName() == name || photo.isSymLink()) && photo.canonicalFilePath() == file;
    });
}

// Adds ".png" if QFileDialog did not: it takes any text after a dot for a suffix.
QString asPng(const QString& path)
{
    const bool isPng = QFileInfo(path).suffix().compare(u"png"_s, Qt::CaseInsensitive) == 0;
    return isPng ? path : path + u".png"_s;
}

}    // namespace

ExportDialogs::ExportDialogs(StudioSession& session, PreferencesStore& preferences, QWidget* window)
    : QObject(window), m_session(session), m_window(window), m_folder(preferences, exportFolderKey)
{
}

void ExportDialogs::chooseFile(QUuid id)
{
    const PublicationItems& items = m_session.batch().items;
    const auto item = std::ranges::find(items, id, &PublicationItem::id);
    if (item == items.end())
        return;
    // Removes quotes: QFileDialog takes them as separators of several file names.
    askForFile(id, exportName(item->url, m_folder.begin()).remove(u'"'));
}

void ExportDialogs::askForFile(QUuid item, const QString& name)
{
    auto* dialog = new QFileDialog(m_window, u"Exportar imagen"_s, m_folder.begin(),
                                   u"Imagen PNG (*.png *.PNG)"_s);
    disposeOf(dialog);
    dialog->setAcceptMode(QFileDialog::AcceptSave);
    dialog->setFileMode(QFileDialog::AnyFile);
    dialog->setDefaultSuffix(u"png"_s);
    dialog->selectFile(name);
    connect(dialog, &QFileDialog::accepted, this,
            [this, dialog, item] { takeFile(item, dialog->selectedFiles().value(0)); });
    dialog->open();
}

void ExportDialogs::takeFile(QUuid item, const QString& path)
{
    if (path.isEmpty())
        return;
    const QFileInfo file(asPng(path));
    m_folder.remember(file.absolutePath());
    if (isPhotoOf(m_session.batch(), file.filePath())) {
        m_session.setStatus(u"Ese archivo es una foto del lote: elige otro nombre."_s,
                            StatusKind::warning);
    } else if (file.filePath() != path && file.exists()) {
        // The dialog has asked whether to replace `path`, but the export would replace the file
        // with ".png" added.
        m_session.setStatus(
            u"Ya existe %1: confirma que lo sustituyes o elige otro nombre."_s.arg(file.fileName()),
            StatusKind::warning);
        askForFile(item, file.fileName());
    } else {
        Q_EMIT fileChosen(item, file.filePath());
    }
}

void ExportDialogs::chooseFolder(const QList<QUuid>& items)
{
    auto* dialog = new QFileDialog(m_window, u"Exportar imágenes"_s, m_folder.begin());
    disposeOf(dialog);
    dialog->setFileMode(QFileDialog::Directory);
    dialog->setOption(QFileDialog::ShowDirsOnly);
    dialog->setLabelText(QFileDialog::Accept, u"Exportar aquí"_s);
    connect(dialog, &QFileDialog::accepted, this, [this, dialog, items] {
        const QString folder = dialog->selectedFiles().value(0);
        if (folder.isEmpty())
            return;
        m_folder.remember(folder);
        Q_EMIT folderChosen(items, folder);
    });
    dialog->open();
}
