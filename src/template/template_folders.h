// Where the files of an unpacked template package and its extensions are.
#pragma once

#include <string>
#include <string_view>

namespace bw {

// The folder at or below `folder` that holds control.xml: while a folder has
// none, the search goes into its only sub folder, so that a zip that wraps
// its content in folders still works. "" when there is no such folder.
std::string PackageRootFolder(const std::string& folder);

// <documents>\<product key>\Templates\<template file name>: the folder of
// all that belongs to one template file, its name without blanks and
// slashes.
std::string TemplateBaseFolderOf(std::string_view templateName);

// The template's folder for an empty name, else that extension's.
std::string TemplateFolderOf(const std::string& extName);

// folder\name when that is a file or a folder; otherwise "", and the status
// display is closed, as the caller is about to report the missing file.
std::string TemplateFilePath(const std::string& folder, const std::string& name);

}  // namespace bw
