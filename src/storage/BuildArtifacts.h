#pragma once

#include <array>
#include <string_view>

/// The names by which projects and what their builds make are known. Spelling and case are exact.
namespace lumenary {

/// A folder that holds one of these is a project; searched in this order.
inline constexpr std::array<std::string_view, 10> projectMarkers = {
    "package.json", "pyproject.toml", "Package.swift",    ".git",      "Cargo.toml",
    "pom.xml",      "build.gradle",   "build.gradle.kts", "build.sbt", "requirements.txt"};

/// Always made by a build or a package manager, wherever they stand.
inline constexpr std::array<std::string_view, 7> artifactNames = {"node_modules", ".next",  "dist",       "build",
                                                                  "__pycache__",  ".build", "DerivedData"};

/// One of these beside a folder called "target" makes it build output; searched in this order.
inline constexpr std::array<std::string_view, 5> targetBuildFiles = {"Cargo.toml", "pom.xml", "build.gradle",
                                                                     "build.gradle.kts", "build.sbt"};

/// What the next build makes again; the other artifacts are downloaded dependencies.
inline constexpr std::array<std::string_view, 6> generatedOutputNames = {"__pycache__", ".next",  "dist",
                                                                         "build",       ".build", "DerivedData"};

}  // namespace lumenary
