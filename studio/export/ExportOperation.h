#pragma once

#include "studio/export/RenderCharge.h"

#include <QCoroTask>

#include <atomic>
#include <functional>
#include <memory>

class PhotoCache;
class StagingFolder;

struct ExportProgress {
    enum class Stage { rendering, charging, writing };

    Stage stage = Stage::rendering;
    qsizetype done = 0, total = 0;    // number of images in this stage
    bool operator==(const ExportProgress&) const = default;
};

enum class ExportKind { single, batch };

struct ExportRequest {
    ExportKind kind = ExportKind::batch;
    PublicationItems items;
    QStringList destinations;    // path of the file to write for each item
    SocialFormat format = SocialFormat::carouselPortrait;
    OutputSize outputSize = exportSizeOf;
    int jobs = 0;                   // see RenderOrder::jobs
    std::optional<qint64> price;    // the price shown to the user, in credits; empty: unknown
};

struct ExportServices {
    std::shared_ptr<PhotoCache> photos;
    QString stagingPlace;    // folder for rendered pictures until they are paid
    ChargeServices charge;
};

// Shared by an export and its caller, who sets `stop` to end the export. All functions may be
// empty.
struct ExportControl {
    std::atomic_bool stop = false;
    std::function<void(const ExportProgress&)> progressed;
    std::function<void(qint64 cost)> charging;    // called before credits are reserved
    // Called when the export begins to wait for another operation that pays for the same images.
    std::function<void()> waiting;
    // Called after rendering with the destination of each item that could not be rendered; the
    // other items are exported. If `leftOut` is empty, nothing is exported in that case.
    std::function<void(const QString& file)> leftOut;
    // Called for each file after the attempt to write it. `reason`: the system's error message;
    // empty if the file was written.
    std::function<void(const QString& file, const QString& reason)> wrote;
    std::shared_ptr<StagingFolder> staging;    // null before and after the export
};

struct ExportOutcome : Charge {
    enum class State {
        done,
        notPrepared,    // an image could not be rendered
        tooFewCredits,
        notReserved,
        notWritten,
        stopped,
    };

    State state = State::done;
    // Paths of files, in the order of the items. A file that is in neither list was not tried.
    QStringList written, unwritten;
    QString failed;                  // path of the photo that could not be rendered
    bool isStagingFailed = false;    // the staging folder could not be written to
    ExportKind kind = ExportKind::batch;

    bool isDone() const { return state == State::done; }
    bool isShortOfCredits() const
    {
        return state == State::tooFewCredits || refusal == ChargeResult::Refusal::tooFewCredits;
    }
    QString sentence() const;    // for the user
};

// Renders all items into the staging folder, charges for the unpaid ones, and only then writes the
// files one after the other. Refunds the whole charge if one of them cannot be written. No file is
// ever written in part. If the balance is too low in any case (see isOutOfReach()), ends before
// rendering.
QCoro::Task<ExportOutcome> runExport(ExportRequest request, ExportServices services,
                                     std::shared_ptr<ExportControl> control);
