#include "app/controls/ChooserFolder.h"

#include "platform/PreferencesStore.h"

#include <QApplication>
#include <QDir>
#include <QFileDialog>

void disposeOf(QFileDialog* dialog)
{
    dialog->setAttribute(Qt::WA_DeleteOnClose);
    QObject::connect(dialog, &QDialog::finished, dialog, [] {
        while (QWidget* popup = QApplication::activePopupWidget()) {
            if (!popup->close())
                break;
        }
    });
}

QString usualFolder(QStandardPaths::StandardLocation kind)
{
    const QString folder = QStandardPaths::writableLocation(kind);
    return QFileInfo(folder).isDir() ? folder : QDir::homePath();
}

ChooserFolder::ChooserFolder(PreferencesStore& preferences, const QString& key)
    : m_preferences(preferences), m_key(key),
      m_last(QString::fromUtf8(preferences.value(key).value_or(QByteArray())))
{
}

QString ChooserFolder::begin() const
{
    return QFileInfo(m_last).isDir() ? m_last : usualFolder(QStandardPaths::PicturesLocation);
}

void ChooserFolder::remember(const QString& folder)
{
    m_last = folder;
    m_preferences.setValue(m_key, folder.toUtf8());
}
