#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

// toJson() and fromJson() convert those records of model/ that files contain: CodableColor,
// CodableRect, ImagePlacement, GeneratedCopy, TextLayer, TextLayerDesign, ShapeLayer,
// ShapeLayerDesign, QLists of the two layers, PublicationItemSnapshot and WorkspaceSnapshot. Only
// toJson() also takes the parts of a document: QString, QUrl, QUuid, QByteArray (as base-64),
// QSet<QUuid> and QSet<QString>.

template <typename Record>
QByteArray toJson(const Record& record);

// Returns nothing if the bytes are not JSON or not a Record; never throws. Drops those entries of a
// list that cannot be read.
template <typename Record>
std::optional<Record> fromJson(QByteArrayView bytes);
