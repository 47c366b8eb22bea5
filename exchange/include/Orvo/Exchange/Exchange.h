#pragma once

/// @file
/// Everything for taking machines to other programs and back: JSON, glTF, URDF, Graphviz.

#include <Orvo/Exchange/Dot.h>
#include <Orvo/Exchange/ExchangeError.h>
#include <Orvo/Exchange/Export.h>
#include <Orvo/Exchange/Gltf.h>
#include <Orvo/Exchange/MachineJson.h>
#include <Orvo/Exchange/Urdf.h>
