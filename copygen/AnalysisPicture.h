#pragma once

#include "platform/SystemLock.h"

#include <QString>
#include <QUrl>

#include <memory>
#include <stop_token>

// The temporary copy of a photo that the model is shown: upright, at full size, readable by its
// user alone. The destructor removes it; after a crash, removeLeftovers() does.
class AnalysisPicture {
public:
    // Waits for the disk and the codec. Without a path when the photo cannot be read or written,
    // or `stop` was requested.
    explicit AnalysisPicture(const QUrl& photo, const std::stop_token& stop = {});

    QString path() const { return m_path; }    // ends in ".png", without a comma

    // Removes the pictures that ended programs left behind.
    static void removeLeftovers();

private:
    std::unique_ptr<SystemLock> m_file;    // locks the picture itself
    QString m_path;
};
