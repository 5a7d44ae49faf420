// The provider behind a session, as the database classes reach it.
#pragma once

#include "platform/odbc_connection.h"
#include "qor/tools/database/session.h"

namespace qor::tools::database {

// The session's provider, or null before it is open.
IOpenRowset *ProviderOf(session const &s);

}  // namespace qor::tools::database
