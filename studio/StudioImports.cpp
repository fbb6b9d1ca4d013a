#include "studio/StudioImports.h"

#include <utility>

namespace {

constexpr std::chrono::milliseconds importStep{30};    // between emissions of progressed()

}    // namespace

StudioImports::~StudioImports()
{
    stop();
}

void StudioImports::stop()
{
    if (const auto control = std::exchange(m_control, nullptr))
        control->stop = true;
}

void StudioImports::start(const QList<QUrl>& filesAndFolders)
{
    stop();
    auto control = std::make_shared<PhotoImport::Control>();
    m_control = control;
    m_shown.reset();
    control->progressed = [this,
                           weak = std::weak_ptr(control)](const PhotoImport::Progress& progress) {
        // Uses `this` safely: the destructor stops the import, and a stopped import no longer calls
        // this function.
        if (m_control == weak.lock())
            show(progress);
    };
    run(this, filesAndFolders, m_photos, control);
}

// Emits progressed() at most once per `importStep`, because its receivers look at all photos so far
// each time.
void StudioImports::show(const PhotoImport::Progress& progress)
{
    const auto now = m_clock();
    if (m_shown && now - *m_shown < importStep && progress.looked < progress.total)
        return;
    m_shown = now;
    Q_EMIT progressed(progress);
}

QCoro::Task<> StudioImports::run(QPointer<StudioImports> self, QList<QUrl> urls,
                                 std::shared_ptr<PhotoCache> photos,
                                 std::shared_ptr<PhotoImport::Control> control)
{
    auto importing = PhotoImport::importPhotos(urls, photos, control);
    std::optional<PhotoImport::Imported> imported;
    QString failure;
    try {
        imported = co_await importing;
    } catch (const std::exception& error) {
        failure = QString::fromLocal8Bit(error.what());
    }
    // Meanwhile the import may have been stopped, or `self` destroyed.
    if (!self || self->m_control != control)
        co_return;
    self->m_control.reset();
    Q_EMIT self->ended(imported, failure);
}
