# Parts of the tree that can be left out.

# Finds packages that a part needs. Those that are missing are named together, with the option that leaves the part out.
macro(kelarc_find_for part option)
    set(missing)
    foreach(package ${ARGN})
        if(package STREQUAL "asio") # headers only, without a CMake package
            find_path(ASIO_INCLUDE_DIR asio.hpp)
            set(asio_FOUND ${ASIO_INCLUDE_DIR})
        else()
            find_package(${package} QUIET GLOBAL)
        endif()
        if(NOT ${package}_FOUND)
            list(APPEND missing ${package})
        endif()
    endforeach()
    if(missing)
        list(JOIN missing ", " missing)
        message(FATAL_ERROR "${part} needs what is not found: ${missing}. On Debian scripts/setup installs it; "
            "-D${option}=OFF builds without this part.")
    endif()
endmacro()

# Runs before a folder's files are installed and after its subfolders' files. Where the target was not built, nothing of
# the folder is installed, but asking for its component by name is an error.
function(kelarc_install_if_built target component)
    install(CODE "
        if(NOT EXISTS \"$<TARGET_FILE:${target}>\")
            if(CMAKE_INSTALL_COMPONENT)
                message(FATAL_ERROR \"The component ${component} has ${target}, which was not built\")
            endif()
            message(STATUS \"Not built, so not installed: ${target}\")
            return()
        endif()" COMPONENT ${component})
endfunction()
