# Installing the library and finding it from another project.
