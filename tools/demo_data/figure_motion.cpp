#include "tools/demo_data/figure_motion.h"

#include <algorithm>

namespace korvane::demo
{

namespace
{

class figure_rig
{
public:
    explicit figure_rig(const figure_controls& controls) : m_controls(controls), m_rig(humanoidRig()) {}

    rig_pose pose()
    {
        trunk();
        leg(m_controls.left_foot, "_l");
        leg(m_controls.right_foot, "_r");
        arm(m_controls.left_arm, "_l", 1);
        arm(m_controls.right_arm, "_r", -1);
        cape();
        return m_rig.pose();
    }

private:
    static int bone(const std::string& name) { return humanoidRig().find(name); }

    void trunk()
    {
        m_rig.move(bone("root"), m_controls.root);
        m_rig.turn(bone("root"), turnOf({0, m_controls.facing, 0}));
        m_rig.move(bone("pelvis"), m_controls.hips);
        m_rig.turn(bone("pelvis"), turnOf(m_controls.hips_turn));
        m_rig.turn(bone("spine_0"), turnOf(m_controls.chest * 0.3));
        m_rig.turn(bone("spine_1"), turnOf(m_controls.chest * 0.4));
        m_rig.turn(bone("spine_2"), turnOf(m_controls.chest * 0.3));
        m_rig.turn(bone("neck"), turnOf(m_controls.head * 0.4));
        m_rig.turn(bone("head"), turnOf(m_controls.head * 0.6));
        m_rig.turn(bone("jaw"), turnOf({m_controls.jaw, 0, 0}));
    }

    void leg(const foot_controls& foot, const std::string& side)
    {
        const int upper = bone("upperleg" + side), lower = bone("lowerleg" + side), ankle = bone("foot" + side);
        const int toe = bone("toe" + side);
        const vec3 rest = m_rig.restPosition(ankle);
        // It rolls about the ball, or about a point under the heel.
        const vec3 ball = m_rig.restPosition(toe);
        const vec3 pivot = foot.heel > 0 ? ball : vec3{rest.x, 0, rest.z + 0.05};
        const quaternion yaw = turnOf({0, foot.yaw, 0});
        const quaternion roll = turnAbout({1, 0, 0}, -foot.heel);
        const vec3 rolled = pivot + rotated(roll, rest - pivot);
        const vec3 target = rest + foot.place + rotated(yaw, rolled - rest);
        const vec3 pole =
            m_rig.restPole(upper, lower, ankle) + vec3{side == "_l" ? 1.0 : -1.0, 0, 0} * m_controls.knees_out;
        const quaternion hips = m_rig.worldTurn(bone("pelvis"));
        m_rig.reach(upper, lower, ankle, target, rotated(hips, pole) * 0.7 + rotated(yaw, pole) * 0.3);
        m_rig.turnInWorld(ankle, yaw * roll);
        m_rig.turn(toe, turnAbout({1, 0, 0}, foot.heel > 0 ? foot.heel * foot.flat : 0));
    }

    void arm(const arm_controls& arm, const std::string& side, double sign)
    {
        const int upper = bone("upperarm" + side), lower = bone("lowerarm" + side), wrist = bone("hand" + side);
        const int chest = bone("spine_2");
        m_rig.turn(bone("clav" + side), turnOf({0, 0, -sign * arm.shrug}));
        const quaternion turn = m_rig.worldTurn(chest);
        const vec3 from_chest = m_rig.restPosition(wrist) + arm.hand - m_rig.restPosition(chest);
        const vec3 pole = m_rig.restPole(upper, lower, wrist) + arm.elbow;
        m_rig.reach(upper, lower, wrist, m_rig.position(chest) + rotated(turn, from_chest), rotated(turn, pole));
        m_rig.turnInWorld(wrist, turn * turnOf(arm.turn));
        const vec3 forearm = normalised(m_rig.restPosition(wrist) - m_rig.restPosition(lower));
        m_rig.turn(bone("lowerarm_roll" + side), halfTwist(m_rig.localTurn(wrist), forearm));
        for (const char* finger : {"index_", "middle_", "ring_", "pinky_"})
            stretch(finger, side, wrist, arm.open);
    }

    void stretch(const std::string& finger, const std::string& side, int wrist, double open)
    {
        const int first = bone(finger + "0" + side), second = bone(finger + "1" + side),
                  third = bone(finger + "2" + side);
        const vec3 forward = normalised(m_rig.restPosition(first) - m_rig.restPosition(wrist));
        const vec3 curled = normalised(m_rig.restPosition(third) - m_rig.restPosition(second));
        const vec3 axis = normalised(cross(curled, forward));
        m_rig.turn(first, turnAbout(axis, 40 * open));
        m_rig.turn(second, turnAbout(axis, 25 * open));
        m_rig.turn(third, turnAbout(axis, 10 * open));
    }

    // What would hang below the ground lies on it.
    void cape()
    {
        constexpr double ground = 0.02;
        int above = -1;
        for (std::size_t i = 0; i < m_controls.cape_lift.size(); ++i)
        {
            const int here = bone("cape_" + std::to_string(i));
            m_rig.turn(here, turnOf({m_controls.cape_lift[i], 0, -m_controls.cape_sway[i]}));
            const bool is_last = i + 1 == m_controls.cape_lift.size();
            const vec3 rest = is_last ? m_rig.restPosition(here) - m_rig.restPosition(above)
                                      : m_rig.restPosition(here + 1) - m_rig.restPosition(here);
            const quaternion turn = m_rig.worldTurn(here);
            const vec3 start = m_rig.position(here), way = rotated(turn, rest);
            const double size = length(way), lowest = std::clamp(ground - start.y, -size, size);
            if (way.y < lowest)
            {
                const vec3 flat = normalised({way.x, 0, way.z}, {0, 0, 1});
                const vec3 lying = flat * std::sqrt(size * size - lowest * lowest) + vec3{0, lowest, 0};
                m_rig.turnInWorld(here, turnBetween(way * (1 / size), lying * (1 / size), {1, 0, 0}) * turn);
            }
            above = here;
        }
    }

    const figure_controls& m_controls;
    rig m_rig;
};

} // namespace

rig_pose figurePose(const figure_controls& controls)
{
    return figure_rig(controls).pose();
}

void stand(foot_controls& foot, bool is_left, double facing, vec3 moved)
{
    static const vec3 left = humanoidRig().bones[static_cast<std::size_t>(humanoidRig().find("foot_l"))].position;
    static const vec3 right = humanoidRig().bones[static_cast<std::size_t>(humanoidRig().find("foot_r"))].position;
    const vec3 rest = is_left ? left : right;
    foot = {};
    foot.yaw = facing;
    foot.place = rotated(turnOf({0, facing, 0}), rest) - rest + moved;
}

figure_controls standing()
{
    figure_controls controls;
    controls.hips = {0, -0.012, 0};
    setCape(controls, 1.5, 0);
    return controls;
}

figure_controls guarding()
{
    figure_controls controls;
    controls.hips = {0, -0.085, 0.02};
    controls.hips_turn = {3, -18, 0};
    controls.chest = {7, 6, 0};
    controls.head = {-6, 12, 0};
    controls.left_foot.place = {0.03, 0, -0.20};
    controls.left_foot.yaw = -4;
    controls.right_foot.place = {-0.07, 0, 0.22};
    controls.right_foot.yaw = -35;
    controls.right_foot.heel = 8;
    controls.left_arm.hand = {-0.03, 0.10, -0.10};
    controls.left_arm.turn = {0, 8, 0};
    controls.right_arm.hand = {-0.03, 0.10, 0.06};
    controls.right_arm.turn = {18, 8, 0};
    controls.knees_out = 0.3;
    setCape(controls, 5, 0);
    return controls;
}

void setCape(figure_controls& controls, double lift, double sway)
{
    constexpr std::array<double, 4> share = {0.35, 0.30, 0.22, 0.13};
    for (std::size_t i = 0; i < share.size(); ++i)
    {
        controls.cape_lift[i] = lift * share[i];
        controls.cape_sway[i] = sway * share[i];
    }
}

} // namespace korvane::demo
