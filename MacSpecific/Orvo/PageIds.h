#pragma once

/// The wizard's page ids. The agreement comes first, although the source page has the lowest.
enum PageId { SourcePageId = 0, AgreementPageId = 1, DestinationPageId = 2, InstallPageId = 3, NoPage = -1 };
