// What a variant's value means, and the marks that it may carry. The numbers reach archives and
// stored texts: never renumber.
#pragma once

#include <zo/config.h>

// Codes come in groups of 256 under a base code (the first of each group here); the codes 1000 to
// 1071 are the host's extended-data group codes and belong to the same bases (ZoType::baseCode).
// Real values are held in the unit given here. docs/variant.md tells what each code means.
enum class ZoTypeCode : unsigned int {
  NoType = 0x2000,

  Int = 0x2100,
  Long,
  Short,
  Bool,  // 0 is false, all else true
  Access,
  XShort = 1070,
  XLong = 1071,

  BigInt = 0x2200,
  Date,           // 100 ns since 1601
  Guid = 0x22FF,  // a base of its own

  Real = 0x2300,
  Length,      // mm
  Angle,       // rad
  Time,        // s
  Mass,        // kg
  Area,        // mm2
  Volume,      // mm3
  Force,       // N
  SpringRate,  // N/mm
  Pressure,    // N/mm2
  Density,     // kg/mm3
  Speed,       // mm/s
  Power,       // W
  Torque,      // Nmm
  ThreadFactor,
  LinearDensity,   // kg/mm
  Voltage,         // V
  ForceOfCurrent,  // A
  Resistance,      // Ohm
  XReal = 1040,
  XDistance = 1041,  // mm
  XScale = 1042,

  String = 0x2400,
  FName,
  Path,
  Macro,
  DLink = 0x2405,
  PLink,
  Chunk,  // bytes (ZoType::chunkToString)
  XString = 1000,
  XControl = 1002,
  XLayer = 1003,
  XHandle = 1005,

  Point = 0x2500,
  XPoint = 1010,
  XPosition = 1011,

  Vector = 0x2600,
  XDisplacement = 1012,
  XDirection = 1013,

  Sequence = 0x2700,
  Array,
  List,
  XAppName = 1001,

  Dict = 0x2800,
  Firm,
  Catalog,
  Standard,
  Class,
  Part,
  Switch,
  Case,
  Admin,
  User,
  Guest,
  View,
  Callback,
  Favorite,
  FavoriteClass,
  FavoriteCatalog,

  Pointer = 0x2900,
  Unknown,   // IUnknown*
  Dispatch,  // IDispatch*
};

// Bits of a flag word. The library itself heeds ZoFlagConstant and ZoFlagInvisible, in edits of
// variants (zo/dialogs/variant_edits.h); it keeps all others for those who set and read them
// (docs/variant.md).
enum ZoTypeFlag : unsigned int {
  ZoFlagNone = 0,
  ZoFlagCreateList = 0x1,
  ZoFlagVisible = 0x2,  // in the browser
  ZoFlagConstant = 0x4,
  ZoFlagGlobal = 0x40,
  ZoFlagInvisible = 0x80,  // in the browser
  ZoFlagInfopoint = 0x100,
  ZoFlagPreProcessor = 0x800,
  ZoFlagMidProcessor = 0x1000,
  ZoFlagPostProcessor = 0x2000,
  ZoFlagObjecterType = 0x4000,
  ZoFlagParameter = 0x8000,
  ZoFlagReturnValue = 0x20000,
  ZoFlagSystem = 0x40000,
  ZoFlagUserInput = 0x100000,
};
