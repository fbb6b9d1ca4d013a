#pragma once

#include "model/PublicationItem.h"
#include "platform/photo/PhotoCache.h"

#include <QCoroTask>

#include <QList>
#include <QUrl>

#include <atomic>
#include <functional>
#include <memory>

// Makes items from photo files. `Look` says how a photo is checked. The names of photos that fail
// the check are reported.
namespace PhotoImport {

enum class Look {
    picture,    // decodes the photo at a reduced size and stores its thumbnail
    header,     // reads only the header if that gives the size; decoding may still fail later
};

struct Progress {
    qsizetype looked = 0, total = 0;    // files
    PublicationItems accepted;          // so far, in the order of the files
};

// Shared by a running import and its caller, who sets `stop` to end the import.
struct Control {
    std::atomic_bool stop = false;
    std::function<void(const Progress&)> progressed;    // on the caller's thread; may be empty
};

struct Imported {
    PublicationItems items;
    QStringList unreadable;    // file names
};

// Imports the photos of files and folders, in their order; returns nothing if `control` stopped the
// import. Queues only a few photos on the workers at a time, so that work for the screen need not
// wait long.
QCoro::Task<std::optional<Imported>> importPhotos(QList<QUrl> filesAndFolders,
                                                  std::shared_ptr<PhotoCache> cache,
                                                  std::shared_ptr<Control> control,
                                                  Look look = Look::picture);

}    // namespace PhotoImport
