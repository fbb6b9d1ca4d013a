#include "app/controls/ChooserFolder.h"

#include "platform/PreferencesStore.h"

#include <QDir>

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
