#include "service/store/TemplateFiles.h"

#include "model/GuardedJson.h"
#include "platform/AtomicFile.h"
#include "service/store/Refusal.h"

#include <QFile>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype largestTemplate = 16 << 20;
constexpr qsizetype longestFileName = 120;

void checkName(const QString& name)
{
    const auto isSafe = [](QChar c) {
        return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z') || (c >= u'0' && c <= u'9') ||
               QStringView(u"._-").contains(c);
    };
    if (name.size() > longestFileName || name.startsWith(u'.') || !name.endsWith(u".json") ||
        !std::ranges::all_of(name, isSafe))
        throw Refusal(400, "invalid_template", u"the file name"_s);
}

}    // namespace

void storeTemplate(const QDir& folder, const TemplateUploadRequest& upload)
{
    checkName(upload.fileName);
    if (upload.oldFileName)
        checkName(*upload.oldFileName);
    const QByteArray& bytes = upload.templateJSONBase64;
    if (bytes.size() > largestTemplate || !json::parsedWithCare(bytes).is_object())
        throw Refusal(400, "invalid_template", u"not a JSON object"_s);
    const QString path = folder.filePath(upload.fileName);
    if (!writeAtomically(path, bytes).isEmpty() ||
        !QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner))
        throw Refusal(500, "template_upload_failed");
    if (upload.oldFileName && *upload.oldFileName != upload.fileName)
        QFile::remove(folder.filePath(*upload.oldFileName));
}

void removeTemplate(const QDir& folder, const QString& fileName)
{
    checkName(fileName);
    QFile::remove(folder.filePath(fileName));
}
