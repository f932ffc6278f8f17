#pragma once

#include <orvml/check.hpp>
#include <orvml/describe.hpp>
#include <orvml/diff.hpp>
#include <orvml/document.hpp>
#include <orvml/error.hpp>
#include <orvml/fingerprint.hpp>
#include <orvml/interop.hpp>
#include <orvml/load.hpp>
#include <orvml/mapped_file.hpp>
#include <orvml/patch.hpp>
#include <orvml/rescue.hpp>
#include <orvml/save.hpp>
#include <orvml/shape.hpp>
#include <orvml/version.hpp>
#include <orvml/view.hpp>
