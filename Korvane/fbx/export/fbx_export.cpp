// The records around the objects. Their order and what must stand in them: docs/formats/fbx.md, "What readers need".

#include "Korvane/fbx/export/fbx_export.h"

#include "EASY_GUI/services/version.h"
#include "Korvane/fbx/container/fbx_records.h"
#include "Korvane/fbx/export/fbx_export_objects.h"

#include <array>
#include <cmath>
#include <map>

namespace korvane
{

namespace
{

using namespace fbx_records;

constexpr std::int64_t first_id = 1000000;
constexpr std::int64_t document_id = 999999;
constexpr std::int32_t custom_time_mode = 14;

std::string creator()
{
    return std::string(program_name) + " FBX exchange " + std::string(program_version);
}

// Number of the frame rate in the file's list; rates that are not in it are given as they are.
std::int32_t timeMode(double frame_rate)
{
    constexpr struct
    {
        double rate;
        std::int32_t mode;
    } modes[] = {{120, 1}, {100, 2}, {60, 3},    {50, 4},  {48, 5}, {30, 6},
                 {25, 10}, {24, 11}, {1000, 12}, {96, 15}, {72, 16}};
    for (const auto& entry : modes)
        if (frame_rate == entry.rate)
            return entry.mode;
    return custom_time_mode;
}

fbx_record headerExtension()
{
    fbx_record header("FBXHeaderExtension");
    header.add("FBXHeaderVersion", std::int32_t(1003));
    header.add("FBXVersion", std::int32_t(7400));
    header.add("EncryptionType", std::int32_t(0));
    // "1970-01-01 10:00:00:000"
    const std::string time = creationTime();
    const auto part = [&time](std::size_t begin, std::size_t length) -> std::int32_t {
        return time.size() < begin + length ? 0 : std::stoi(time.substr(begin, length));
    };
    fbx_record& stamp = header.add("CreationTimeStamp");
    stamp.add("Version", std::int32_t(1000));
    stamp.add("Year", part(0, 4));
    stamp.add("Month", part(5, 2));
    stamp.add("Day", part(8, 2));
    stamp.add("Hour", part(11, 2));
    stamp.add("Minute", part(14, 2));
    stamp.add("Second", part(17, 2));
    stamp.add("Millisecond", part(20, 3));
    header.add("Creator", creator());
    fbx_record& info = header.add("SceneInfo", fullName("GlobalInfo", "SceneInfo"), std::string("UserData"));
    info.add("Type", std::string("UserData"));
    info.add("Version", std::int32_t(100));
    fbx_record& meta = info.add("MetaData");
    meta.add("Version", std::int32_t(100));
    for (const char* text : {"Title", "Subject", "Author", "Keywords", "Revision", "Comment"})
        meta.add(text, std::string());
    property_list properties(info);
    const std::string vendor(program_name), version(program_version);
    for (const std::string whose : {"Original", "LastSaved"})
        properties.add(whose.c_str(), "Compound", "", "")
            .text((whose + "|ApplicationVendor").c_str(), vendor)
            .text((whose + "|ApplicationName").c_str(), vendor)
            .text((whose + "|ApplicationVersion").c_str(), version);
    return header;
}

fbx_record globalSettings(const export_take* take)
{
    fbx_record settings("GlobalSettings");
    settings.add("Version", std::int32_t(1000));
    property_list(settings)
        .integer("UpAxis", 1)
        .integer("UpAxisSign", 1)
        .integer("FrontAxis", 2)
        .integer("FrontAxisSign", 1)
        .integer("CoordAxis", 0)
        .integer("CoordAxisSign", 1)
        .integer("OriginalUpAxis", -1)
        .integer("OriginalUpAxisSign", 1)
        .number("UnitScaleFactor", centimetres_per_inch)
        .number("OriginalUnitScaleFactor", centimetres_per_inch)
        .colour("AmbientColor", glm::dvec3(0))
        .text("DefaultCamera", "Producer Perspective")
        .choice("TimeMode", take ? timeMode(take->frame_rate) : timeMode(30))
        .time("TimeSpanStart", 0)
        .time("TimeSpanStop", take ? ticks(take->stop_seconds) : ticks(1))
        .number("CustomFrameRate", take ? take->frame_rate : 30);
    return settings;
}

fbx_record documents(const export_take* take)
{
    fbx_record list("Documents");
    list.add("Count", std::int32_t(1));
    fbx_record& own = list.add("Document", document_id, std::string("My Scene"), std::string("Scene"));
    property_list(own).add("SourceObject", "object", "", "").text("ActiveAnimStackName", take ? take_name : "");
    own.add("RootNode", std::int64_t(0));
    return list;
}

// Readers skip objects of a class that is not named here.
fbx_record definitions(const fbx_record& objects)
{
    std::map<std::string, std::int32_t> counts{{"GlobalSettings", 1}};
    std::int32_t total = 1;
    for (const fbx_record& object : objects.children)
    {
        ++counts[object.name];
        ++total;
    }
    fbx_record list("Definitions");
    list.add("Version", std::int32_t(100));
    list.add("Count", total);
    for (const char* name :
         {"GlobalSettings", "NodeAttribute", "Geometry", "Model", "Pose", "Material", "Deformer", "Video", "Texture",
          "AnimationStack", "AnimationLayer", "AnimationCurveNode", "AnimationCurve"})
        if (const auto found = counts.find(name); found != counts.end())
            list.add("ObjectType", std::string(name)).add("Count", found->second);
    return list;
}

fbx_record takes(const export_take* take)
{
    fbx_record list("Takes");
    list.add("Current", std::string(take ? take_name : ""));
    if (take)
    {
        const std::int64_t stop = ticks(take->stop_seconds);
        fbx_record& own = list.add("Take", std::string(take_name));
        own.add("FileName", std::string("Take_001__Korvane_.tak"));
        own.add("LocalTime", std::int64_t(0), stop);
        own.add("ReferenceTime", std::int64_t(0), stop);
    }
    return list;
}

// In the order in which they stand in the file. FileId and CreationTime come from the writer.
enum top_level : std::size_t
{
    header_extension,
    global_settings,
    document_list,
    references,
    definition_list,
    object_list,
    connection_list,
    take_list,
    top_level_count
};

} // namespace

fbx_export::fbx_export(const export_scene& scene, const export_options& options) : m_scene(scene), m_next_id(first_id)
{
    m_document.records.resize(top_level_count);
    m_document.records[header_extension] = headerExtension();
    m_document.records[references] = fbx_record("References");
    m_document.records[references].is_list = true;
    fbx_record& objects = m_document.records[object_list] = fbx_record("Objects");
    fbx_record& connections = m_document.records[connection_list] = fbx_record("Connections");
    objects.is_list = connections.is_list = true;
    addSceneObjects(scene, options, {objects, connections, m_next_id}, m_bone_ids);
    m_object_count = objects.children.size();
    m_connection_count = connections.children.size();
}

const fbx_document& fbx_export::document(const export_take* take)
{
    fbx_record& objects = m_document.records[object_list];
    fbx_record& connections = m_document.records[connection_list];
    objects.children.resize(m_object_count);
    connections.children.resize(m_connection_count);
    std::int64_t next_id = m_next_id;
    if (take)
        addTakeObjects(*take, m_scene, m_bone_ids, {objects, connections, next_id});
    m_document.records[global_settings] = globalSettings(take);
    m_document.records[document_list] = documents(take);
    m_document.records[definition_list] = definitions(objects);
    m_document.records[take_list] = takes(take);
    return m_document;
}

std::vector<std::byte> fbx_export::file(const export_take* take)
{
    if (!m_packed)
        m_packed = packFbx(document(nullptr));
    return writeFbx(document(take), *m_packed);
}

} // namespace korvane
