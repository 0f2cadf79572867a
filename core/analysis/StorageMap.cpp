#include "analysis/StorageMap.h"

#include <utility>

namespace korvanti {
namespace {

Json toArray(const std::vector<MapNode>& nodes) {
    Json array = Json::array();
    for (const auto& node : nodes)
        array.push_back(toJson(node));
    return array;
}

} // namespace

Json toJson(const MapNode& node) {
    Json json = Json::object();
    json["name"] = node.name;
    json["path"] = node.path;
    json["bytes"] = node.bytes;
    json["unreadable"] = node.unreadable;
    if (node.children)
        json["children"] = toArray(*node.children);
    return json;
}

Json toJson(const StorageMap& map) {
    Json json = Json::object();
    json["createdAt"] = iso8601Text(map.createdAt);
    json["roots"] = toArray(map.roots);
    json["duration"] = map.duration;
    return json;
}

// A node can't hold itself deeper than `parseJson` lets a text be nested.
std::expected<MapNode, JsonError> mapNodeFromJson(const Json& json) {
    JsonObjectReader in(json);
    MapNode node;
    node.name = in.text("name");
    node.path = in.text("path");
    node.bytes = in.integer("bytes");
    node.unreadable = in.integer("unreadable");
    if (in.optionalValue("children"))
        node.children = in.records("children", mapNodeFromJson);
    return in.finish(std::move(node));
}

std::expected<StorageMap, JsonError> storageMapFromJson(const Json& json) {
    JsonObjectReader in(json);
    StorageMap map;
    map.createdAt = in.instant("createdAt");
    map.roots = in.records("roots", mapNodeFromJson);
    map.duration = in.number("duration");
    return in.finish(std::move(map));
}

} // namespace korvanti
