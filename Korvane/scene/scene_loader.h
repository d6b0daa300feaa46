#pragma once

// Makes loaded_scene values, on any thread: looks models and textures up, reads and decodes them. What is missing or
// damaged is named in the log and in the scene, and left out; the rest is shown. A loader is used by one thread at a
// time; its work port is called by that thread.

#include "EASY_GUI/services/work_port.h"
#include "Korvane/game/game_data.h"
#include "Korvane/scene/figure.h"
#include "Korvane/scene/loaded_scene.h"

#include <string>
#include <vector>

namespace korvane
{

// What is drawn of a decoded model. Afterwards only its vertex stores are read: edits of the rest may go on, also while
// another thread loads the scene. path: UTF-8, of the model, for messages.
[[nodiscard]] std::shared_ptr<const scene_model> sceneModel(std::shared_ptr<const RMV2_FILE_DATA> data,
                                                            const std::string& path);

class scene_loader
{
public:
    static constexpr std::size_t max_parts = 512; // of one figure; further models are left out and counted as failed

    explicit scene_loader(game_data game, work_port work = {});

    // Replaces the game as the source of textures, for all scenes that are loaded from now on.
    void setTextureReader(texture_reader reader) { m_reader = std::move(reader); }

    // A skeleton in place of those that are looked up: of a model whatever skeleton it names, of a figure for the
    // models that name it. Null: none.
    void setSkeleton(std::shared_ptr<const anim_data> skeleton, std::string path)
    {
        m_skeleton = std::move(skeleton);
        m_skeleton_path = std::move(path);
    }

    // A model in place of the one of a figure that has this internal path, for edits that are not saved yet.
    void setModel(const std::string& internal_path, std::shared_ptr<const RMV2_FILE_DATA> data)
    {
        m_given_model = sceneModel(std::move(data), internal_path);
    }

    // Each gives null only when the work port has asked to stop. A level of detail beyond a model's last one means the
    // last one. The path (UTF-8, of the model or the definition) says where textures are looked for on the disk.
    //
    // A model and its skeleton; null gives an empty scene. Bone below zero: it stands on its own bones, else all of it
    // hangs on that one. The skeleton and the textures that a former scene of the model has are taken over, but for
    // textures with other paths now.
    [[nodiscard]] scene_pointer loadModel(std::shared_ptr<const scene_model> model, const std::string& path,
                                          std::size_t lod = 0, int bone = -1, const scene_pointer& former = nullptr);
    // The same of a decoded one.
    [[nodiscard]] scene_pointer loadModel(std::shared_ptr<const RMV2_FILE_DATA> model, const std::string& path,
                                          std::size_t lod = 0, int bone = -1);
    // The models of a definition (figure.h), in the order in which they are drawn. Models with the same skeleton are
    // moved by one; those without any hang on the bone that the attachment point of their innermost slot names. Models
    // with another skeleton below a slot with an attachment point are a figure of their own that hangs there. Models,
    // skeletons and textures of a former scene of the definition are taken over.
    [[nodiscard]] scene_pointer loadFigure(const std::vector<figure_model>& models, const std::string& path,
                                           std::size_t lod = 0, const scene_pointer& former = nullptr);
    // The same scene at another level of detail; textures that the former one has are taken over.
    [[nodiscard]] scene_pointer loadLevel(const loaded_scene& former, std::size_t lod);
    // The same scene with these in place of its textures of the same paths, and with those that it lacked because one
    // of these was missing; the others are taken over.
    [[nodiscard]] scene_pointer exchangeTextures(const loaded_scene& former,
                                                 const std::vector<std::shared_ptr<const scene_texture>>& fresh);

private:
    loaded_scene begin(const std::string& path) const;
    loaded_scene beginFrom(const loaded_scene& former); // whose textures are known then
    void takeOver(std::shared_ptr<const scene_texture> texture);
    void takeOver(const loaded_scene& former);
    void report(loaded_scene& scene, std::string line) const;
    [[nodiscard]] std::shared_ptr<const scene_model> readModel(loaded_scene& scene, const std::string& internal_path);
    void addPart(loaded_scene& scene, scene_part part, std::size_t lod);
    scene_rig findRig(const std::string& id, const std::string& around, const scene_pointer& former) const;
    scene_rig givenRig(const std::string& id) const;
    void loadTextures(loaded_scene& scene, scene_part& part);
    [[nodiscard]] bool loadTexture(loaded_scene& scene, const std::string& path,
                                   std::shared_ptr<const scene_texture>& texture);

    // Textures of the scene that is being loaded, by internal path.
    struct known_texture
    {
        std::string path;
        std::shared_ptr<const scene_texture> texture;
    };

    game_data m_game;
    work_port m_work;
    texture_reader m_reader;
    std::shared_ptr<const anim_data> m_skeleton; // given
    std::string m_skeleton_path;
    std::shared_ptr<const scene_model> m_given_model; // by its path
    std::vector<known_texture> m_known;
};

} // namespace korvane
