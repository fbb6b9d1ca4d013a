#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

// Records as JSON, and back. Defined for the records of model/ that files hold: CodableColor,
// CodableRect, ImagePlacement, GeneratedCopy, TextLayer, TextLayerDesign, ShapeLayer,
// ShapeLayerDesign, QLists of the two layers and WorkspaceSnapshot. Also written, as parts of a
// document: QString, QUrl, QUuid, QByteArray (as base-64), QSet<QUuid> and QSet<QString>.

template <typename Record>
QByteArray toJson(const Record& record);

// Nothing when the bytes are not JSON or not such a record; never throws. In a list, what does not
// read is dropped.
template <typename Record>
std::optional<Record> fromJson(QByteArrayView bytes);
