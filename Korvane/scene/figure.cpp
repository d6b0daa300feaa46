#include "Korvane/scene/figure.h"

#include "EASY_GUI/services/text.h"
#include "Korvane/archives/internal_path.h"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace korvane
{

namespace
{

bool isAlternative(const variant_tag& tag)
{
    return tag.kind == variant_tag_kind::mesh || tag.kind == variant_tag_kind::reference;
}

class slot_collector
{
public:
    explicit slot_collector(std::vector<figure_slot>& slots) : m_slots(slots) {}

    void collect(const variant_tag& tag, const std::string& around)
    {
        if (tag.kind != variant_tag_kind::slot)
        {
            for (const variant_tag& child : tag.children)
                collect(child, around);
            return;
        }
        figure_slot slot{&tag, pathOf(tag, around), {}};
        for (const variant_tag& child : tag.children)
            if (isAlternative(child))
                slot.alternatives.push_back(&child);
        const std::string own = slot.path;
        m_slots.push_back(std::move(slot));
        for (const variant_tag& child : tag.children)
            collect(child, own + "/");
    }

private:
    std::string pathOf(const variant_tag& tag, const std::string& around)
    {
        const std::string_view name = tag.attribute("name");
        std::string path = around + (name.empty() ? "slot" : displayText(name));
        const std::size_t number = ++m_counts[path];
        return number == 1 ? path : path + "#" + std::to_string(number);
    }

    std::vector<figure_slot>& m_slots;
    std::map<std::string, std::size_t> m_counts; // of each path without its number
};

class model_collector
{
public:
    model_collector(const std::vector<figure_slot>& slots, const figure_choice& choice,
                    std::vector<figure_model>& found)
        : m_choice(choice)
        , m_models(found)
    {
        for (const figure_slot& slot : slots)
            m_slots.emplace(slot.tag, &slot);
    }

    void collect(const variant_tag& tag)
    {
        if (tag.kind == variant_tag_kind::mesh)
            if (std::string path = normalInternalPath(tag.attribute("model")); !path.empty())
                m_models.emplace_back(std::move(path), m_places);
        if (tag.kind == variant_tag_kind::slot)
            return enter(*m_slots.at(&tag));
        for (const variant_tag& child : tag.children)
            collect(child);
    }

private:
    void enter(const figure_slot& slot)
    {
        const variant_tag* const shown = slot.alternatives.empty() ? nullptr : slot.alternatives[slot.shown(m_choice)];
        m_places.push_back({slot.path, std::string(slot.tag->attribute("attach_point"))});
        for (const variant_tag& child : slot.tag->children)
            if (&child == shown || !isAlternative(child))
                collect(child);
        m_places.pop_back();
    }

    std::map<const variant_tag*, const figure_slot*> m_slots;
    const figure_choice& m_choice;
    std::vector<figure_place> m_places;
    std::vector<figure_model>& m_models;
};

} // namespace

std::size_t figure_slot::shown(const figure_choice& choice) const
{
    const auto wanted = choice.find(path);
    if (wanted == choice.end() || alternatives.empty())
        return 0;
    return std::min(wanted->second, alternatives.size() - 1);
}

double figure_slot::probability() const
{
    const std::string_view text = tag->attribute("probability");
    double chance = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), chance);
    const bool is_number = error == std::errc() && end == text.data() + text.size() && chance >= 0 && chance <= 1;
    return is_number ? chance : 1;
}

std::vector<figure_slot> figureSlots(const variant_tag& root)
{
    std::vector<figure_slot> slots;
    slot_collector(slots).collect(root, {});
    return slots;
}

std::vector<figure_model> figureModels(const variant_tag& root, const figure_choice& choice)
{
    std::vector<figure_model> models;
    model_collector(figureSlots(root), choice, models).collect(root);
    return models;
}

} // namespace korvane
