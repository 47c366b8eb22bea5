#pragma once

/// @file
/// Includes the whole exported interface.

#include <Orvo/Angle.h>
#include <Orvo/Export.h>
#include <Orvo/ISerializableXML.h>
#include <Orvo/Kin/CollisionCheck.h>
#include <Orvo/Kin/Entity.h>
#include <Orvo/Kin/EntityId.h>
#include <Orvo/Kin/EntityLink.h>
#include <Orvo/Kin/EntityMesh.h>
#include <Orvo/Kin/Enumerations.h>
#include <Orvo/Kin/HeadIndex.h>
#include <Orvo/Kin/Kinematic.h>
#include <Orvo/Kin/Machine.h>
#include <Orvo/Kin/MachineCompute.h>
#include <Orvo/Kin/MachinePosition.h>
#include <Orvo/Kin/ProgramSystem.h>
#include <Orvo/Kin/ProgramSystemCompute.h>
#include <Orvo/Kin/ProgramSystemIndex.h>
#include <Orvo/Kin/Register.h>
#include <Orvo/Kin/RotariesSolution.h>
#include <Orvo/Kin/TableIndex.h>
#include <Orvo/Matrix43.h>
#include <Orvo/Mesh.h>
#include <Orvo/Simd128.h>
#include <Orvo/Vector3D.h>
#include <Orvo/Version.h>
