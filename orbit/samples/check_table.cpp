#include "orbit/samples/check_table.h"

#include "lib/baselib/errors/error_exception.h"
#include "lib/baselib/errors/log_and_throw.h"

CHECK_TABLE::CHECK_TABLE(std::string file_name)
    : file_name_(std::move(file_name)), file_(std::fopen(file_name_.c_str(), "w")) {
    if (file_ == nullptr) {
        LogAndThrow<ERROR_CAN_NOT_CREATE_FILE>("ORBIT::SavePolynomial() can not create file: %s", file_name_.c_str());
    }
    std::fputs("|t [s]|x [m]|y [m]|z [m]|ix [m]|iy [m]|iz [m]|dx [m]|dy [m]|dz [m]|\n", file_.get());
}

void CHECK_TABLE::AddLine(double t_s, const VECTOR_3D<double>& given_m, const VECTOR_3D<double>& interpolated_m) {
    const VECTOR_3D<double>& g = given_m;
    const VECTOR_3D<double>& i = interpolated_m;
    std::fprintf(file_.get(), "| %f | %e | %e | %e | %e | %e | %e | %e | %e | %e |\n", t_s, g.x, g.y, g.z, i.x, i.y,
                 i.z, g.x - i.x, g.y - i.y, g.z - i.z);
}

void CHECK_TABLE::Close() {
    const bool written = std::ferror(file_.get()) == 0;
    if (std::fclose(file_.release()) != 0 || !written) {
        LogAndThrow<ERROR_CAN_NOT_WRITE_FILE>("ORBIT::SavePolynomial() can not write file: %s", file_name_.c_str());
    }
}
