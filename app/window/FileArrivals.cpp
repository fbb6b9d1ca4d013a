#include "app/window/FileArrivals.h"

#include "app/account/LoginView.h"
#include "app/window/DropVeil.h"
#include "app/window/FileIntake.h"
#include "platform/PortalFileTransfer.h"

#include <QDragEnterEvent>

#include <utility>

FileArrivals::FileArrivals(FileIntake* files, DropVeil* veil, LoginView* login,
                           const Covers& covers, QObject* parent)
    : QObject(parent), m_files(files), m_veil(veil), m_login(login), m_covers(covers)
{
    connect(files, &FileIntake::received, this, &FileArrivals::drop);
}

void FileArrivals::open(const QList<QUrl>& files)
{
    if (!m_covers.isGated())
        return m_files->open(files);
    m_opened += files;
    showWaiting();
}

void FileArrivals::dragEntered(QDragEnterEvent* event)
{
    const QList<QUrl> files = FileIntake::localFiles(event->mimeData());
    if ((files.isEmpty() && !offersPortalFiles(*event->mimeData())) || m_covers.isSheetPresented())
        return;
    if (!m_covers.isGated())
        m_veil->offer(m_files->offerOf(files));
    event->acceptProposedAction();
}

void FileArrivals::dragLeft()
{
    m_veil->hide();
}

void FileArrivals::dropped(QDropEvent* event)
{
    m_veil->hide();
    event->acceptProposedAction();
    m_files->receive(*event->mimeData());
}

// The files of a drop may come late, when a sheet has been opened meanwhile.
void FileArrivals::drop(const QList<QUrl>& files)
{
    if (!m_covers.isGated() && !m_covers.isSheetPresented())
        return m_files->drop(files);
    m_dropped += files;
    showWaiting();
}

void FileArrivals::openWaiting()
{
    const QList<QUrl> opened = std::exchange(m_opened, {});
    const QList<QUrl> dropped = std::exchange(m_dropped, {});
    showWaiting();
    if (opened.isEmpty() && !dropped.isEmpty())
        m_files->drop(dropped);
    else
        m_files->open(opened + dropped);
}

void FileArrivals::openDropped()
{
    if (!m_dropped.isEmpty())
        openWaiting();
}

void FileArrivals::showWaiting()
{
    m_login->setWaitingFiles(int(m_opened.size() + m_dropped.size()));
}
