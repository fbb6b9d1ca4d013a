#pragma once

#include "studio/export/BatchExport.h"
#include "studio/export/RenderCharge.h"

#include <QCoroTask>

#include <atomic>
#include <functional>
#include <memory>

class PhotoCache;
class StagingFolder;

// How far an export is.
struct ExportProgress {
    enum class Stage { rendering, charging, writing };

    Stage stage = Stage::rendering;
    qsizetype done = 0, total = 0;    // images of the stage
    bool operator==(const ExportProgress&) const = default;
};

enum class ExportKind { single, batch };

// A finished picture and the file that it is to become.
struct PendingExport {
    QString destination;
    RenderedOutput output;
};

struct ExportRequest {
    ExportKind kind = ExportKind::batch;
    PublicationItems items;
    QStringList destinations;    // one an item
    SocialFormat format = SocialFormat::carouselPortrait;
    OutputSize outputSize = exportSizeOf;
    int jobs = 0;                   // see RenderOrder
    std::optional<qint64> price;    // that was shown, in credits; nothing: it was not known yet
};

// What an export works with.
struct ExportServices {
    std::shared_ptr<PhotoCache> photos;
    QString stagingPlace;    // for rendered pictures that are not paid yet
    ChargeServices charge;
};

// Shared by who runs an export and who may end it.
struct ExportControl {
    std::atomic_bool stop = false;
    std::function<void(const ExportProgress&)> progressed;    // may be empty
    std::function<void(qint64 cost)> charging;                // before the reservation; likewise
    // An image that cannot be rendered is left out, and told by the file that it would have become,
    // when all others are rendered; empty: nothing is exported then.
    std::function<void(const QString& file)> leftOut;
    // A file that was written, or why it was not, in the system's words; likewise.
    std::function<void(const QString& file, const QString& reason)> wrote;
    std::shared_ptr<StagingFolder> staging;    // while it runs
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
    QStringList written, unwritten;    // files that were tried
    QString failed;                    // the photo that could not be prepared
    bool isCacheFull = false;          // pictures could not be put aside
    ExportKind kind = ExportKind::batch;

    bool isDone() const { return state == State::done; }
    bool isShortOfCredits() const
    {
        return state == State::tooFewCredits || refusal == ChargeResult::Refusal::tooFewCredits;
    }
    QString sentence() const;    // for the user
};

// Renders all items to the staging folder, asks for what is not paid yet, and only then writes the
// files, one after the other; if one cannot be written, all is given back. Nothing reaches the
// destinations unpaid, and every file is whole. What the account cannot pay whatever comes out is
// refused before anything is drawn.
QCoro::Task<ExportOutcome> runExport(ExportRequest request, ExportServices services,
                                     std::shared_ptr<ExportControl> control);
