# One precompiled header with the headers that most sources include. Without it, a build takes twice the time.
#
# It contains headers of Qt Core and the standard library only, so that no folder gets access to another module of Qt.
# A source still includes all headers that it uses, because clang-tidy runs without the precompiled header.

# ocela_without_qt(<target> ...): targets that are not linked to Qt, so they have no precompiled header and no moc.
function(ocela_without_qt)
  set_target_properties(${ARGN} PROPERTIES AUTOMOC OFF DISABLE_PRECOMPILE_HEADERS ON)
endfunction()

add_library(ocela_precompiled OBJECT ${CMAKE_CURRENT_LIST_DIR}/precompiled.cpp)
target_link_libraries(ocela_precompiled PRIVATE ocela_options Qt5::Core)
target_precompile_headers(ocela_precompiled PRIVATE
  <QByteArray> <QCoreApplication> <QDateTime> <QDebug> <QDir> <QFile> <QJsonDocument> <QMap> <QObject> <QSettings> <QString>
  <QStringList> <QThread> <QTimer> <QVariant> <QVector> <algorithm> <functional> <memory> <optional> <variant>)

# ocela_use_precompiled_header(<directory>): for all targets in the directory and below.
function(ocela_use_precompiled_header directory)
  get_property(targets DIRECTORY ${directory} PROPERTY BUILDSYSTEM_TARGETS)
  foreach(target IN LISTS targets)
    get_target_property(type ${target} TYPE)
    if(type MATCHES "^(EXECUTABLE|(STATIC|SHARED|MODULE|OBJECT)_LIBRARY)$" AND NOT target STREQUAL ocela_precompiled)
      target_precompile_headers(${target} REUSE_FROM ocela_precompiled)
    endif()
  endforeach()
  get_property(subdirectories DIRECTORY ${directory} PROPERTY SUBDIRECTORIES)
  foreach(subdirectory IN LISTS subdirectories)
    ocela_use_precompiled_header(${subdirectory})
  endforeach()
endfunction()
