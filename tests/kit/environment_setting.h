/// \file environment_setting.h

#pragma once

#include <cstdlib>

/// Sets an environment variable while it lives.
class ENVIRONMENT_SETTING {
  public:
    ENVIRONMENT_SETTING(const char* name, const char* value) : name_(name) { setenv(name, value, 1); }
    ~ENVIRONMENT_SETTING() { unsetenv(name_); }
    ENVIRONMENT_SETTING(const ENVIRONMENT_SETTING&) = delete;
    ENVIRONMENT_SETTING& operator=(const ENVIRONMENT_SETTING&) = delete;

  private:
    const char* name_;
};
