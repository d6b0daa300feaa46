#include "tools/demo_data/definitions.h"

namespace korvane::demo
{

namespace
{

constexpr const char* guard_text = R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- The demo guard, put together from several models. -->
<VARIANT_MESH>
  <SLOT name="body">
    <VARIANT_MESH model="variantmeshes\wh_variantmodels\hu1\demo\demo_guard_body.rigid_model_v2">
      <SLOT name="cape" probability="1.0">
        <VARIANT_MESH model="variantmeshes\wh_variantmodels\hu1\demo\demo_guard_cape.rigid_model_v2" />
      </SLOT>
    </VARIANT_MESH>
  </SLOT>
  <SLOT name="head" attach_point="head">
    <VARIANT_MESH model="variantmeshes\wh_variantmodels\hu1\demo\demo_guard_head.rigid_model_v2" />
  </SLOT>
  <SLOT name="weapons">
    <VARIANT_MESH_REFERENCE definition="variantmeshes\variantmeshdefinitions\demo_guard_weapons.variantmeshdefinition" />
  </SLOT>
</VARIANT_MESH>
)";

constexpr const char* weapons_text = R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- What the demo guard carries: sword and shield. -->
<VARIANT_MESH>
  <SLOT name="weapon_1" attach_point="be_prop_0" probability="1.0">
    <VARIANT_MESH model="variantmeshes\wh_variantmodels\hu1\demo\demo_guard_sword.rigid_model_v2" />
  </SLOT>
  <SLOT name="shield" attach_point="be_prop_1" probability="0.75">
    <VARIANT_MESH model="variantmeshes\wh_variantmodels\hu1\demo\demo_guard_shield.rigid_model_v2" />
  </SLOT>
</VARIANT_MESH>
)";

constexpr const char* champion_text = R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- The demo guard with a weapon that has no skeleton: it hangs in the hand. -->
<VARIANT_MESH>
  <SLOT name="body">
    <VARIANT_MESH model="variantmeshes\wh_variantmodels\hu1\demo\demo_guard_body.rigid_model_v2" />
  </SLOT>
  <SLOT name="cape" probability="0.5">
    <VARIANT_MESH model="variantmeshes\wh_variantmodels\hu1\demo\demo_guard_cape.rigid_model_v2" />
    <VARIANT_MESH />
  </SLOT>
  <SLOT name="head" attach_point="head">
    <VARIANT_MESH model="variantmeshes\wh_variantmodels\hu1\demo\demo_guard_head.rigid_model_v2" />
  </SLOT>
  <SLOT name="weapon" attach_point="be_prop_0" probability="1.0">
    <VARIANT_MESH model="variantmeshes\wh_variantmodels\hu1\demo\demo_loose_sword.rigid_model_v2" />
    <VARIANT_MESH model="variantmeshes\wh_variantmodels\hu1\demo\demo_loose_mace.rigid_model_v2" />
  </SLOT>
  <SLOT name="shield" attach_point="be_prop_1" probability="0.75">
    <VARIANT_MESH model="variantmeshes\wh_variantmodels\hu1\demo\demo_guard_shield.rigid_model_v2" />
  </SLOT>
</VARIANT_MESH>
)";

constexpr const char* rider_text = R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- A horse, and the guard on it. -->
<VARIANT_MESH>
  <SLOT name="mount">
    <VARIANT_MESH model="variantmeshes\wh_variantmodels\be1\demo\demo_horse.rigid_model_v2" />
  </SLOT>
  <SLOT name="rider" attach_point="rider">
    <VARIANT_MESH_REFERENCE definition="variantmeshes\variantmeshdefinitions\demo_champion.variantmeshdefinition" />
  </SLOT>
</VARIANT_MESH>
)";

} // namespace

std::span<const definition> definitions()
{
    static const definition all[] = {
        {std::string(guard_definition_path), "definition: the guard put together from several models", guard_text},
        {std::string(weapons_definition_path), "definition: what the guard carries", weapons_text},
        {std::string(champion_definition_path), "definition: the guard with a hanging weapon, or another",
         champion_text},
        {std::string(rider_definition_path), "definition: the guard on the horse", rider_text},
    };
    return all;
}

const std::string& olderGuardDefinition()
{
    static const std::string text = R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- The demo guard as one model, from before it was taken apart. -->
<VARIANT_MESH model="variantmeshes\wh_variantmodels\hu1\demo\demo_guard.rigid_model_v2" />
)";
    return text;
}

const std::string& moddedWeaponsDefinition()
{
    static const std::string text = R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- The mod arms the demo guard with a spear. -->
<VARIANT_MESH>
  <SLOT name="weapon_1" attach_point="be_prop_0" probability="1.0">
    <VARIANT_MESH model="variantmeshes\wh_variantmodels\hu1\demo\demo_guard_spear.rigid_model_v2" />
  </SLOT>
  <SLOT name="shield" attach_point="be_prop_1" probability="1.0">
    <VARIANT_MESH model="variantmeshes\wh_variantmodels\hu1\demo\demo_guard_shield.rigid_model_v2" />
  </SLOT>
</VARIANT_MESH>
)";
    return text;
}

} // namespace korvane::demo
