#include "simulation/exception_text.h"

#include <exception>
#include <new>

#include "lib/baselib/errors/error_exception.h"

std::string CurrentExceptionText() {
    try {
        throw;
    } catch (const ERROR_EXCEPTION& error) {
        return error.Message();
    } catch (const char* text) {
        return text;
    } catch (const std::bad_alloc&) {
        return "out of memory";
    } catch (const std::exception& error) {
        return error.what();
    } catch (...) {
        return "exception of an unknown kind";
    }
}
