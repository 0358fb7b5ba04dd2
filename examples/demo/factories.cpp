// The factories through which the Architect creates the demo's components;
// each name is what the component's get_name() reports.

#include "beam_effector.h"
#include "beam_to.h"
#include "find_cell.h"
#include "hold_position.h"
#include "play_soccer.h"
#include "posture.h"
#include "spread_out.h"
#include "take_position.h"
#include "team_agent.h"
#include "team_configuration.h"
#include "world_model.h"

ORVO_COMPONENT_FACTORY(agent, demo::TeamAgent)
ORVO_COMPONENT_FACTORY(configuration, demo::TeamConfiguration)
ORVO_COMPONENT_FACTORY(worldmodel, demo::WorldModel)
ORVO_COMPONENT_FACTORY(behavior_take_position, demo::TakePosition)
ORVO_COMPONENT_FACTORY(behavior_spread_out, demo::SpreadOut)
ORVO_COMPONENT_FACTORY(behavior_hold_position, demo::HoldPosition)
ORVO_COMPONENT_FACTORY(behavior_play, demo::PlaySoccer)
ORVO_COMPONENT_FACTORY(skill_beam, demo::BeamTo)
ORVO_COMPONENT_FACTORY(skill_find_cell, demo::FindCell)
ORVO_COMPONENT_FACTORY(skill_posture, demo::Posture)
ORVO_COMPONENT_FACTORY(effector_beam, demo::BeamEffector)
