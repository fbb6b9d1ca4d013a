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
    qsizetype done = 0, total = 0;    // images of the stage
    bool operator==(const ExportProgress&) const = default;
};

enum class ExportKind { single, batch };

struct ExportRequest {
    ExportKind kind = ExportKind::batch;
    PublicationItems items;
    QStringList destinations;    // one an item
    SocialFormat format = SocialFormat::carouselPortrait;
    OutputSize outputSize = exportSizeOf;
    int jobs = 0;                   // as in RenderOrder
    std::optional<qint64> price;    // the price shown to the user, in credits; empty: unknown
};

struct ExportServices {
    std::shared_ptr<PhotoCache> photos;
    QString stagingPlace;    // for rendered pictures that are not paid yet
    ChargeServices charge;
};

// Shared by an export and its caller, who may stop it. All functions may be empty.
struct ExportControl {
    std::atomic_bool stop = false;
    std::function<void(const ExportProgress&)> progressed;    // may be empty
    std::function<void(qint64 cost)> charging;                // before the reservation
    // Called after rendering for each image that could not be rendered, with the file that it would
    // have become; the others are exported. Empty: then nothing is exported.
    std::function<void(const QString& file)> leftOut;
    // Called for each file, with the system's reason why it was not written; empty: it was.
    std::function<void(const QString& file, const QString& reason)> wrote;
    std::shared_ptr<StagingFolder> staging;    // null before and after the run
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
    // Files, in the order of the items; later ones were not tried.
    QStringList written, unwritten;
    QString failed;              // the photo that could not be prepared
    bool isCacheFull = false;    // no room to stage the rendered pictures
    ExportKind kind = ExportKind::batch;

    bool isDone() const { return state == State::done; }
    bool isShortOfCredits() const
    {
        return state == State::tooFewCredits || refusal == ChargeResult::Refusal::tooFewCredits;
    }
    QString sentence() const;    // for the user
};

// Renders all items to the staging folder, charges what is not paid yet, and only then writes the
// files one after the other. Refunds all if one cannot be written. Nothing unpaid reaches the
// destinations, and every file is whole. If the balance cannot suffice whatever the pixels are,
// refuses before rendering.
QCoro::Task<ExportOutcome> runExport(ExportRequest request, ExportServices services,
                                     std::shared_ptr<ExportControl> control);
