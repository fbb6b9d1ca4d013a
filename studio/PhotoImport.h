#pragma once

#include "model/PublicationItem.h"
#include "platform/PhotoCache.h"

#include <QCoroTask>

#include <QList>
#include <QUrl>

#include <atomic>
#include <functional>
#include <memory>

// Photos becoming items. A photo is accepted when the workers can look at it; the names of the
// others are kept.
namespace PhotoImport {

enum class Look {
    picture,    // a reduced decoding, whose thumbnail is kept
    header,     // no decoding where the header tells the size: drawing it may still fail
};

struct Progress {
    qsizetype looked = 0, total = 0;    // files
    PublicationItems accepted;          // so far, in order
};

// Shared by who runs an import and who may end it.
struct Control {
    std::atomic_bool stop = false;
    std::function<void(const Progress&)> progressed;    // on the caller's thread; may be empty
};

struct Imported {
    PublicationItems items;
    QStringList unreadable;    // names of files
};

// The items of these files and folders, in order; nothing when it was stopped. At most a few
// decodings wait in the workers' queue at any time, so that what the screen needs meanwhile gets
// its turn.
QCoro::Task<std::optional<Imported>> importPhotos(QList<QUrl> filesAndFolders,
                                                  std::shared_ptr<PhotoCache> cache,
                                                  std::shared_ptr<Control> control,
                                                  Look look = Look::picture);

}    // namespace PhotoImport
