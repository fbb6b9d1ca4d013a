#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

// Records to JSON and back, for those records of model/ that files hold: CodableColor, CodableRect,
// ImagePlacement, GeneratedCopy, TextLayer, TextLayerDesign, ShapeLayer, ShapeLayerDesign, QLists
// of the two layers, PublicationItemSnapshot and WorkspaceSnapshot. These can only be written, as
// parts of a document: QString, QUrl, QUuid, QByteArray (as base-64), QSet<QUuid> and
// QSet<QString>.

template <typename Record>
QByteArray toJson(const Record& record);

// Nothing when the bytes are not JSON or not a Record; never throws. A list drops the entries that
// cannot be read.
template <typename Record>
std::optional<Record> fromJson(QByteArrayView bytes);
