// SPDX-License-Identifier: MIT
#pragma once

#include <pybind11/pybind11.h>

#include <cstdint>
#include <string>

#include "kelvora/recording/sensor_size.hpp"
#include "sessions/parameter_error.hpp"
#include "sessions/settings_builder.hpp"

/// \file
/// Conversion of keyword arguments to settings.

namespace kelvora::python {

/// Names parameters by their keywords.
extern const tool::Wording kKeywordWording;

/// Sets parameters from keyword arguments. Arguments that are None are skipped.
///
/// \throws pybind11::type_error  for unknown keywords and values of the wrong type.
/// \throws std::invalid_argument  for values out of range.
void setParameters(tool::SettingsBuilder& builder, const pybind11::dict& keywords);

/// Checks combinations of parameters.
/// \throws pybind11::type_error  for parameters of another method.
/// \throws std::invalid_argument  for other contradictions.
void checkParameters(const tool::SettingsBuilder& builder);

/// The settings of a clusterer.
tool::Settings clustererSettings(const std::string& method, const pybind11::dict& keywords);

/// The text of a string.
///
/// \param keyword  Name of the argument, for messages.
/// \throws pybind11::type_error  if it is not a string.
std::string toString(const std::string& keyword, const pybind11::handle& value);

/// \throws std::invalid_argument  if it is not a valid sensor size.
recording::SensorSize toSensorSize(std::int64_t width, std::int64_t height);

/// \throws std::invalid_argument  with the message, unless the condition holds.
void require(bool condition, const char* message);

}  // namespace kelvora::python
