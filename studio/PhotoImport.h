#pragma once

#include "model/PublicationItem.h"
#include "platform/photo/PhotoCache.h"

#include <QCoroTask>

#include <QList>
#include <QUrl>

#include <atomic>
#include <functional>
#include <memory>

// Makes items of photos. A photo is accepted when a worker could look at it as Look says; the names
// of the others are reported.
namespace PhotoImport {

enum class Look {
    picture,    // a reduced decoding, whose thumbnail is kept
    header,     // no decoding where the header tells the size: drawing it may still fail
};

struct Progress {
    qsizetype looked = 0, total = 0;    // files
    PublicationItems accepted;          // so far, in the order of the files
};

// Shared by a running import and its caller, who may stop it.
struct Control {
    std::atomic_bool stop = false;
    std::function<void(const Progress&)> progressed;    // on the caller's thread; may be empty
};

struct Imported {
    PublicationItems items;
    QStringList unreadable;    // names of files
};

// The items of these files and folders, in order; none when `control` stopped the import. Only a
// few decodings wait in the workers' queue at any time, so that work for the screen gets its turn.
QCoro::Task<std::optional<Imported>> importPhotos(QList<QUrl> filesAndFolders,
                                                  std::shared_ptr<PhotoCache> cache,
                                                  std::shared_ptr<Control> control,
                                                  Look look = Look::picture);

}    // namespace PhotoImport
