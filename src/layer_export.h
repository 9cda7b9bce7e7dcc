// Export markers of the layers. CMake defines <Layer>_EXPORTS while it builds that layer.
#pragma once

#include <QtCore/qglobal.h>

#ifdef KalvorData_EXPORTS
#define KALVOR_DATA Q_DECL_EXPORT
#else
#define KALVOR_DATA Q_DECL_IMPORT
#endif

#ifdef KalvorRpc_EXPORTS
#define KALVOR_RPC Q_DECL_EXPORT
#else
#define KALVOR_RPC Q_DECL_IMPORT
#endif

#ifdef KalvorPlatform_EXPORTS
#define KALVOR_PLATFORM Q_DECL_EXPORT
#else
#define KALVOR_PLATFORM Q_DECL_IMPORT
#endif

#ifdef KalvorRules_EXPORTS
#define KALVOR_RULES Q_DECL_EXPORT
#else
#define KALVOR_RULES Q_DECL_IMPORT
#endif

#ifdef KalvorWidgets_EXPORTS
#define KALVOR_WIDGETS Q_DECL_EXPORT
#else
#define KALVOR_WIDGETS Q_DECL_IMPORT
#endif

#ifdef BasePackage_EXPORTS
#define BASE_PACKAGE Q_DECL_EXPORT
#else
#define BASE_PACKAGE Q_DECL_IMPORT
#endif

#ifdef KalvorServerCore_EXPORTS
#define KALVOR_SERVER Q_DECL_EXPORT
#else
#define KALVOR_SERVER Q_DECL_IMPORT
#endif
