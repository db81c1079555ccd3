#include "tools/demo_producer/ShowFile.h"

#include "network/events/ProtocolLimits.h"
#include "tools/demo_producer/ShowNames.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QSaveFile>

#include <algorithm>

using namespace NetworkCompanion;

namespace {

QJsonArray toJson(const QRectF& area) {
    return {area.x(), area.y(), area.width(), area.height()};
}

QRectF areaFrom(const QJsonValue& value) {
    const QJsonArray array = value.toArray();
    if (array.size() != 4)
        return {0, 0, 1, 1};
    return {array[0].toDouble(), array[1].toDouble(), array[2].toDouble(), array[3].toDouble()};
}

QJsonArray positionsToJson(const std::vector<ControlPoint>& points) {
    QJsonArray array;
    for (const ControlPoint& point : points)
        array.append(QJsonArray{point.position.x(), point.position.y()});
    return array;
}

QJsonArray selectionToJson(const std::vector<ControlPoint>& points) {
    QJsonArray array;
    for (std::size_t id = 0; id < points.size(); ++id)
        if (points[id].selected)
            array.append(qint64(id));
    return array;
}

QJsonObject toJson(const Warp& warp) {
    return {{QStringLiteral("type"), nameOf(warp.kind)},
            {QStringLiteral("rows"), warp.rows},
            {QStringLiteral("columns"), warp.columns},
            {QStringLiteral("xy"), positionsToJson(warp.xy)},
            {QStringLiteral("uv"), positionsToJson(warp.uv)},
            {QStringLiteral("selectedXy"), selectionToJson(warp.xy)},
            {QStringLiteral("selectedUv"), selectionToJson(warp.uv)}};
}

std::vector<ControlPoint> pointsFrom(const QJsonObject& json, const QString& positions,
                                     const QString& selection) {
    std::vector<ControlPoint> points;
    for (const auto& position : json[positions].toArray())
        points.push_back({{position[0].toDouble(), position[1].toDouble()}, false});
    for (const auto& id : json[selection].toArray()) {
        const int index = id.toInt(-1);
        if (index >= 0 && index < int(points.size()))
            points[std::size_t(index)].selected = true;
    }
    return points;
}

Warp warpFrom(const QJsonObject& json, QString& error) {
    Warp warp;
    const QString type = json[QStringLiteral("type")].toString(QStringLiteral("none"));
    if (const auto kind = deformationNamed(type))
        warp.kind = *kind;
    else
        error = QStringLiteral("there is no deformation \"%1\"").arg(type);
    warp.rows = json[QStringLiteral("rows")].toInt(2);
    warp.columns = json[QStringLiteral("columns")].toInt(2);
    warp.xy = pointsFrom(json, QStringLiteral("xy"), QStringLiteral("selectedXy"));
    warp.uv = pointsFrom(json, QStringLiteral("uv"), QStringLiteral("selectedUv"));
    return warp;
}

ShowItem itemFrom(const QJsonObject& json, quint32 freeDataIndex, QString& error) {
    ShowItem item;
    const auto text = [&json](const char* member) {
        return json[QLatin1String(member)].toString();
    };
    const auto key = itemNamed(text("item"));
    if (!key)
        error = QStringLiteral("it has no key such as \"screen:0\"");
    else
        item.key = *key;
    const qint64 dataIndex = json[QStringLiteral("dataIndex")].toInteger(freeDataIndex);
    item.dataIndex = quint32(std::clamp<qint64>(dataIndex, 0, UINT32_MAX));
    item.name = text("name");
    item.size = {json[QStringLiteral("width")].toInt(), json[QStringLiteral("height")].toInt()};
    item.rotation = json[QStringLiteral("rotation")].toDouble();
    item.blinded = json[QStringLiteral("blinded")].toBool();
    item.warp = warpFrom(json[QStringLiteral("deformation")].toObject(), error);
    if (const auto type = mediaTypeNamed(text("mediaType")))
        item.mediaType = *type;
    if (const auto mode = modeNamed(text("mode")))
        item.mode = *mode;
    item.picture = text("picture");
    for (const auto& value : json[QStringLiteral("layers")].toArray())
        if (const auto layer = itemNamed(value[QStringLiteral("item")].toString()))
            item.layers.push_back({*layer, areaFrom(value[QStringLiteral("area")])});
    item.area = areaFrom(json[QStringLiteral("area")]);
    return item;
}

} // namespace

QJsonObject ShowFile::toJson(const ShowItem& item) {
    QJsonObject json{{QStringLiteral("item"), nameOf(item.key)},
                     {QStringLiteral("dataIndex"), qint64(item.dataIndex)},
                     {QStringLiteral("name"), item.name},
                     {QStringLiteral("width"), item.size.width()},
                     {QStringLiteral("height"), item.size.height()},
                     {QStringLiteral("rotation"), item.rotation},
                     {QStringLiteral("blinded"), item.blinded},
                     {QStringLiteral("deformation"), ::toJson(item.warp)}};
    switch (item.key.type) {
    case LV_NTC_ElementType::Media:
        json[QStringLiteral("mediaType")] = nameOf(item.mediaType);
        [[fallthrough]];
    case LV_NTC_ElementType::Texture:
        json[QStringLiteral("picture")] = item.picture;
        break;
    case LV_NTC_ElementType::Screen: {
        json[QStringLiteral("mode")] = nameOf(item.mode);
        QJsonArray layers;
        for (const Layer& layer : item.layers)
            layers.append(QJsonObject{{QStringLiteral("item"), nameOf(layer.item)},
                                      {QStringLiteral("area"), ::toJson(layer.area)}});
        json[QStringLiteral("layers")] = layers;
        break;
    }
    default:
        json[QStringLiteral("area")] = ::toJson(item.area);
    }
    return json;
}

QJsonObject ShowFile::toJson(const Show& show) {
    QJsonArray items;
    QJsonArray keys;
    for (const ShowItem& item : show.items())
        items.append(toJson(item));
    for (const auto& [id, key] : show.quickKeys)
        keys.append(QJsonObject{{QStringLiteral("id"), qint64(id)},
                                {QStringLiteral("name"), key.name},
                                {QStringLiteral("color"), key.color}});
    return {
        {QStringLiteral("title"), show.title},
        {QStringLiteral("pattern"), nameOf(show.pattern)},
        {QStringLiteral("quickKeys"), QJsonObject{{QStringLiteral("rows"), show.quickKeyRows},
                                                  {QStringLiteral("columns"), show.quickKeyColumns},
                                                  {QStringLiteral("keys"), keys}}},
        {QStringLiteral("items"), items}};
}

std::optional<Show> ShowFile::fromJson(const QJsonObject& json, QString& error) {
    Show show;
    error.clear();
    show.title = json[QStringLiteral("title")].toString();
    const QString pattern = json[QStringLiteral("pattern")].toString(QStringLiteral("none"));
    if (const auto picture = patternNamed(pattern))
        show.pattern = *picture;
    else
        error = QStringLiteral("there is no pattern \"%1\"").arg(pattern);

    const QJsonObject quickKeys = json[QStringLiteral("quickKeys")].toObject();
    show.quickKeyRows = quickKeys[QStringLiteral("rows")].toInt(show.quickKeyRows);
    show.quickKeyColumns = quickKeys[QStringLiteral("columns")].toInt(show.quickKeyColumns);
    for (const auto& value : quickKeys[QStringLiteral("keys")].toArray()) {
        const qint64 id = value[QStringLiteral("id")].toInteger();
        if (id < Limits::kMinQuickKeyId || id > Limits::kMaxQuickKeyId)
            error = QStringLiteral("there is no quick key %1").arg(id);
        else
            show.quickKeys[quint32(id)] = {value[QStringLiteral("name")].toString(),
                                           value[QStringLiteral("color")].toString()};
    }
    const auto fits = [](int n) {
        return n >= int(Limits::kMinQuickKeyGrid) && n <= int(Limits::kMaxQuickKeyGrid);
    };
    if (!fits(show.quickKeyRows) || !fits(show.quickKeyColumns))
        error = QStringLiteral("the grid of quick keys is impossible");

    quint32 freeDataIndex = 1;
    for (const auto& value : json[QStringLiteral("items")].toArray()) {
        if (!error.isEmpty())
            return {};
        ShowItem item = itemFrom(value.toObject(), freeDataIndex, error);
        freeDataIndex = std::max(freeDataIndex, item.dataIndex + 1);
        const QString name = value[QStringLiteral("item")].toString();
        if (error.isEmpty())
            error = show.add(std::move(item)).value_or(QString());
        if (!error.isEmpty())
            error = QStringLiteral("item \"%1\": %2").arg(name, error);
    }
    return error.isEmpty() ? std::optional(show) : std::nullopt;
}

std::optional<Show> ShowFile::read(const QString& path, QString& error) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        error = file.errorString();
        return {};
    }
    QJsonParseError fault;
    const QJsonDocument document = QJsonDocument::fromJson(file.readAll(), &fault);
    if (!document.isObject()) {
        error = fault.error == QJsonParseError::NoError ? QStringLiteral("it is not a JSON object")
                                                        : fault.errorString();
        return {};
    }
    return fromJson(document.object(), error);
}

bool ShowFile::write(const QString& path, const QJsonObject& json) {
    QSaveFile file(path);
    if (!file.open(QIODevice::WriteOnly))
        return false;
    file.write(QJsonDocument(json).toJson());
    return file.commit();
}
