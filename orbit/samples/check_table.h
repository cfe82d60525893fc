/// \file check_table.h
/// The check table of an orbit: given and interpolated position at every state vector.
///
///     |t [s]|x [m]|y [m]|z [m]|ix [m]|iy [m]|iz [m]|dx [m]|dy [m]|dz [m]|
///     | 30.000000 | -2.052252e+06 | ... |        time since the reference time; dx = x - ix

#pragma once

#include <cstdio>
#include <memory>
#include <string>

#include "lib/baselib/containers/records.h"

class CHECK_TABLE {
  public:
    /// Creates the file and writes its first line. @throws ERROR_CAN_NOT_CREATE_FILE, after logging
    explicit CHECK_TABLE(std::string file_name);

    void AddLine(double t_s, const VECTOR_3D<double>& given_m, const VECTOR_3D<double>& interpolated_m);

    /// @throws ERROR_CAN_NOT_WRITE_FILE, after logging, when anything has not reached the file
    void Close();

  private:
    struct CLOSER {
        void operator()(FILE* file) const { std::fclose(file); }
    };

    std::string file_name_;
    std::unique_ptr<FILE, CLOSER> file_;
};
